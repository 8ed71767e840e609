#include "readers/driver_test.h"

namespace orvane_test {
namespace {

using IcrTool = DriverOf<kIcr>;

TEST_F(IcrTool, TriesTheUsbReaderUpToThreeTimes) {
  constexpr std::int64_t kDone = 0x90, kBusy = 0x05;
  const struct {
    std::vector<std::int64_t> results;
    int expected;
  } rows[] = {
      {{kBusy, kDone}, 1},
      {{kDone, kBusy, kDone}, 1},
      {{kBusy, kBusy, kBusy}, 0},
      {{kDone, kBusy, kBusy}, 0},
  };
  for (const auto& row : rows) {
    StartAnew();
    std::string calls;
    for (const std::int64_t result : row.results) {
      module.Answer("SDT_OpenPort", result);
      calls += "SDT_OpenPort(1001)\n";
    }
    EXPECT_EQ(OpenReaderA("ICR-COM1001(ICRUSB)", ReaderKindIcr), row.expected);
    EXPECT_EQ(NewCallsWithoutResults(), calls);
  }
}

TEST_F(IcrTool, ReadsACardButGivesNothing) {
  OpenAnew();
  ChangeSlot("0C");
  EXPECT_EQ(ResetCard(), (Reply{1, ""}));
  EXPECT_EQ(Send("00A40400"), (Reply{1, ""}));
  EXPECT_EQ(NewCallsWithoutResults(),
            "SDT_StartFindIDCard(1, 0)\nSDT_StartFindIDCard(1, 0)\nSDT_SelectIDCard(1, 0)\n"
            "SDT_ReadBaseMsg(1, 0)\n");
  module.InsertCard(false);
  EXPECT_EQ(ResetCard(), (Reply{0, kUntouched}));
  EXPECT_EQ(Send("00A40400"), (Reply{0, ""}));
}

TEST_F(IcrTool, NeedsTheSecondFindAndTheSelection) {
  const struct {
    std::vector<std::int64_t> finds;
    std::int64_t selection;
    int expected;
  } rows[] = {
      {{0x80, 0x9F}, 0x90, 1}, {{0x9F, 0x80}, 0x90, 0}, {{0x9F, 0x90}, 0x90, 0},
      {{0x9F, 0x9F}, 0x9F, 0}, {{0x9F, 0x9F}, 0x81, 0},
  };
  OpenAnew();
  for (const auto& row : rows) {
    for (const std::int64_t find : row.finds) module.Answer("SDT_StartFindIDCard", find);
    module.Answer("SDT_SelectIDCard", row.selection);
    EXPECT_EQ(ResetCard().result, row.expected) << row.finds[1] << ' ' << row.selection;
  }
}

TEST_F(IcrTool, HasRoomForLongMessages) {
  const std::string everywhere(2 * 40960, 'A');
  OpenAnew();
  for (const std::int64_t length : {SIMULATOR_TRUE_LENGTH, INT64_C(-1), INT64_C(0x7FFFFFFF)}) {
    module.Answer("SDT_ReadBaseMsg", 0x90, everywhere.c_str(), length);
    EXPECT_EQ(Send(std::string(8192, 'A')), (Reply{1, ""}));
  }
  module.Answer("SDT_ReadBaseMsg", 0x41, everywhere.c_str());
  EXPECT_EQ(Send(""), (Reply{0, ""}));
}

// It knows no open and closed: every close goes to the library.
TEST_F(IcrTool, ClosesEachTime) {
  OpenAnew();
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_EQ(CloseReader(), 0);
  EmptySlots();
  EXPECT_EQ(NewCalls(),
            "SDT_ClosePort(1) = 0x90\nSDT_ClosePort(1) = 0x1\nSDT_ClosePort(1) = 0x1\n");
}

}  // namespace
}  // namespace orvane_test
