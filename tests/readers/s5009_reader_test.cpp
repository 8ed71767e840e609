#include "readers/driver_test.h"

namespace orvane_test {
namespace {

class S5009Reader : public DriverTest {
 protected:
  S5009Reader() : DriverTest("S5009") {}
};

TEST_F(S5009Reader, OpensPortsAsTheyAreNumbered) {
  const OpenRow rows[] = {
      {nullptr, 1, 1, "InitCOM(1) = 0\n"},
      {nullptr, 2, 0, "InitCOM(2) = 1\n"},
      {nullptr, -5, 0, "InitCOM(-5) = 1\n"},
      {"COM1", 0, 1, "InitCOM(1) = 0\n"},
      {"S5009 on COM12", 0, 0, "InitCOM(12) = 1\n"},
      {"COM", 0, 0, "InitCOM(0) = 1\n"},
      {"USB1", 0, 0, ""},
  };
  for (const int kind : {ReaderKindS5009, ReaderKindS5009Ats}) {
    for (const OpenRow& row : rows) {
      StartAnew();
      EXPECT_EQ(row.Open(kind), row.expected) << row;
      EXPECT_EQ(NewCalls(), row.calls) << row;
    }
  }
}

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

TEST_F(S5009Reader, ResetsByItsKind) {
  const std::string longest(512, 'A');
  for (const auto& [kind, function] :
       {std::pair{ReaderKindS5009, "Mifare_SearchCard"}, {ReaderKindS5009Ats, "Mifare_GetATS"}}) {
    StartAnew();
    ASSERT_EQ(OpenReader(1, kind, 9600), 1);
    NewCalls();
    EXPECT_EQ(ResetCard(), (Reply{1, kCardAtr}));
    EXPECT_EQ(NewCalls(), std::string(function) + "() = 0 " + kCardAtr + '\n');
    const struct {
      std::int64_t result;
      const char* data;
      std::int64_t length;
      Reply expected;
    } rows[] = {
        {0, "04A1B2C3", SIMULATOR_TRUE_LENGTH, {1, "04A1B2C3"}},
        {5, "04", SIMULATOR_TRUE_LENGTH, {1, "04"}},  // only a negative result is failure
        {0, "04", 3, {1, "040000"}},
        {0, "", SIMULATOR_TRUE_LENGTH, {1, ""}},
        {0, longest.c_str(), SIMULATOR_TRUE_LENGTH, {1, longest}},
        {0, longest.c_str(), 257, {0, kUntouched}},
        {0, "04", -1, {0, kUntouched}},
        {-1, "04", SIMULATOR_TRUE_LENGTH, {0, kUntouched}},
    };
    for (const auto& row : rows) {
      module.Answer(function, row.result, row.data, row.length);
      EXPECT_EQ(ResetCard(), row.expected) << function << ' ' << row.result << ' ' << row.length;
    }
  }
}

/// Another kind is another tool: it asks for no ATS, and the port is closed before it is opened.
TEST_F(S5009Reader, ClosesBeforeTheOtherKindOpens) {
  ASSERT_EQ(OpenReader(1, ReaderKindS5009Ats, 9600), 1);
  ASSERT_EQ(OpenReader(1, ReaderKindS5009Ats, 9600), 1);
  ASSERT_EQ(OpenReader(1, ReaderKindS5009, 9600), 1);
  EXPECT_EQ(ResetCard().result, 1);
  EXPECT_EQ(CallsWithoutResults(NewCalls()),
            "InitCOM(1)\nInitCOM(1)\nCloseCOM(1)\nInitCOM(1)\nMifare_SearchCard()\n");
}

TEST_F(S5009Reader, ExchangesText) {
  ASSERT_EQ(OpenReader(1, ReaderKindS5009, 9600), 1);
  NewCalls();
  EXPECT_EQ(Send("00a4040002ffff"), (Reply{0, "6A82"}));
  EXPECT_EQ(NewCalls(), "ExchangeAPDU(3, \"00A4040002FFFF\", 14) = 0 36413832\n");
  ChangeSlot("01");
  EXPECT_EQ(Send("").result, 0);
  EXPECT_EQ(CallsWithoutResults(NewCalls()), "ExchangeAPDU(1, \"\", 0)\n");

  EXPECT_EQ(Send(std::string(2 * 134, 'A')), (Reply{0, ""}));
  EXPECT_EQ(NewCalls(), "");
  module.Answer("ExchangeAPDU", 0, "9000");
  EXPECT_EQ(Send(std::string(2 * 133, 'A')), (Reply{1, "9000"}));
  EXPECT_EQ(CallsWithoutResults(NewCalls()),
            "ExchangeAPDU(1, \"" + std::string(266, 'A') + "\", 266)\n");
}

TEST_F(S5009Reader, TakesPairsOfCharacters) {
  ASSERT_EQ(OpenReader(1, ReaderKindS5009, 9600), 1);
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
