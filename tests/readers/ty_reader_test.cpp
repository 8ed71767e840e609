#include "readers/driver_test.h"

namespace orvane_test {
namespace {

using TyComReader = DriverOf<kTyCom>;
using TyUsbReader = DriverOf<kTyUsb>;

TEST_F(TyComReader, PassesTheSlotOn) {
  OpenAnew();
  EXPECT_EQ(ResetCard().result, 1);
  ChangeSlot("02");
  EXPECT_EQ(ResetCard().result, 1);
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_EQ(ResetCard(), (Reply{0, kUntouched}));
  EXPECT_EQ(NewCallsWithoutResults(), "TY_Dreset(0, 0)\nTY_Dreset(0, 2)\nTY_Close(0)\n");
}

TEST_F(TyUsbReader, KeepsItsKeyWhenAnotherDoesNotOpen) {
  OpenAnew();
  EXPECT_EQ(OpenReaderA("USB9", ReaderKindTyUsb), 0);
  NewCalls();
  ChangeSlot("02");
  EXPECT_EQ(ResetCard(), (Reply{1, kCardAtr}));
  EXPECT_EQ(NewCalls(), std::string("TYKey_ColdReset(-1000) = 0x9000 ") + kCardAtr + '\n');
}

TEST_F(TyUsbReader, ListsTheKeysThatAreThere) {
  using Lines = std::vector<std::string>;
  const Lines two = {"1 1 1 USB1", "1 1 2 USB2"};
  Lines all;
  for (int i = 0; i < 16; ++i)
    all.push_back("1 1 " + std::to_string(i) + " USB" + std::to_string(i));
  const struct {
    const char* table;
    std::int64_t result;
    int max;
    Lines expected;
  } rows[] = {
      {"00FF010000", 0, 0, two},
      {"00FF010000", 0, 2, two},
      {"00FF010000", 0, 1, {"1 1 1 USB1"}},
      {"00FF010000", 1, -1, two},  // what the call gives back decides nothing
      {"01010101010101010101010101010101", 0, 0, all},
      {"0101010101010101010101010101010101010101", 0, 20, all},
      {"", 0, 0, {}},
  };
  for (const auto& row : rows) {
    StartAnew();
    module.Answer("TYKey_Status", row.result, row.table);
    EXPECT_EQ(List(ReaderKindTyUsb, 0, row.max), row.expected) << row.table << ' ' << row.max;
    EXPECT_EQ(NewCallsWithoutResults(), "TYKey_Change()\nTYKey_Status()\n");
  }
  EXPECT_EQ(List(ReaderKindTyUsb, 0, 0), (Lines{"1 1 0 USB0", "1 1 1 USB1"}));
}

}  // namespace
}  // namespace orvane_test
