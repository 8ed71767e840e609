#include "readers/driver_test.h"

namespace orvane_test {
namespace {

using S5009Reader = DriverOf<kS5009>;

TEST_F(S5009Reader, ClosesThePortOfTheLastSuccess) {
  ASSERT_EQ(OpenReader(1, ReaderKindS5009, 9600), 1);
  EXPECT_EQ(OpenReader(2, ReaderKindS5009, 9600), 0);  // the failure's result counts as open
  NewCalls();
  module.Answer("CloseCOM", 9);
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_EQ(NewCalls(), "CloseCOM(1) = 9\n");
  EXPECT_EQ(ResetCard(), (Reply{0, kUntouched}));
  EXPECT_EQ(NewCalls(), "");
}

TEST_F(S5009Reader, FailsToResetOnNegativeResultsAlone) {
  OpenAnew();
  module.Answer("Mifare_SearchCard", 5, "04");
  EXPECT_EQ(ResetCard(), (Reply{1, "04"}));
}

// Another kind is another tool: it asks for no ATS, and the port is closed before it is opened.
TEST_F(S5009Reader, ClosesBeforeTheOtherKindOpens) {
  ASSERT_EQ(OpenReader(1, ReaderKindS5009Ats, 9600), 1);
  ASSERT_EQ(OpenReader(1, ReaderKindS5009Ats, 9600), 1);
  ASSERT_EQ(OpenReader(1, ReaderKindS5009, 9600), 1);
  EXPECT_EQ(ResetCard().result, 1);
  EXPECT_EQ(NewCallsWithoutResults(),
            "InitCOM(1)\nInitCOM(1)\nCloseCOM(1)\nInitCOM(1)\nMifare_SearchCard()\n");
}

TEST_F(S5009Reader, ExchangesText) {
  OpenAnew();
  EXPECT_EQ(Send("00a4040002ffff"), (Reply{0, "6A82"}));
  EXPECT_EQ(NewCalls(), "ExchangeAPDU(3, \"00A4040002FFFF\", 14) = 0 36413832\n");
  ChangeSlot("01");
  EXPECT_EQ(Send("").result, 0);
  EXPECT_EQ(NewCallsWithoutResults(), "ExchangeAPDU(1, \"\", 0)\n");
}

TEST_F(S5009Reader, TakesPairsOfCharacters) {
  OpenAnew();
  const struct {
    int characters;
    Reply expected;
  } rows[] = {
      {3, {0, ""}}, {4, {1, "9000"}}, {5, {1, "9000"}}, {6, {0, "9000"}}, {256, {0, "9000"}}};
  for (const auto& row : rows) {
    module.Answer("ExchangeAPDU", 0, "9000", row.characters);
    EXPECT_EQ(Send("00B0000003"), row.expected) << row.characters;
  }
}

}  // namespace
}  // namespace orvane_test
