#include "readers/driver_test.h"

namespace orvane_test {
namespace {

class IcrTool : public DriverTest {
 protected:
  IcrTool() : DriverTest("sdtapi") {}
};

constexpr char kUsb[] = "ICR-COM1001(ICRUSB)";

TEST_F(IcrTool, OpensPorts) {
  const OpenRow rows[] = {
      {kUsb, 0, 1, "SDT_OpenPort(1001) = 0x90\nSDT_OpenPort(1001) = 0x90\n"},
      {"ICR-COM1", 0, 1, "SDT_OpenPort(1) = 0x90\n"},
      {"ICR-COM3", 0, 0, "SDT_OpenPort(3) = 0x1\n"},
      {"COM1001", 0, 1, "SDT_OpenPort(1001) = 0x90\n"},
      {"ICR-COM", 0, 0, "SDT_OpenPort(0) = 0x1\n"},
      {"ICRUSB", 0, 0, ""},
      {nullptr, 1, 0, ""},
  };
  for (const OpenRow& row : rows) {
    StartAnew();
    NewCalls();
    EXPECT_EQ(row.Open(ReaderKindIcr), row.expected) << row;
    EXPECT_EQ(NewCalls(), row.calls) << row;
  }
}

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
    EXPECT_EQ(OpenReaderA(kUsb, ReaderKindIcr), row.expected);
    EXPECT_EQ(CallsWithoutResults(NewCalls()), calls);
  }
}

TEST_F(IcrTool, ReadsACardButGivesNothing) {
  ASSERT_EQ(OpenReaderA("ICR-COM1", ReaderKindIcr), 1);
  NewCalls();
  ChangeSlot("0C");
  EXPECT_EQ(ResetCard(), (Reply{1, ""}));
  EXPECT_EQ(Send("00A40400"), (Reply{1, ""}));
  EXPECT_EQ(CallsWithoutResults(NewCalls()),
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
  ASSERT_EQ(OpenReaderA("ICR-COM1", ReaderKindIcr), 1);
  for (const auto& row : rows) {
    for (const std::int64_t find : row.finds) module.Answer("SDT_StartFindIDCard", find);
    module.Answer("SDT_SelectIDCard", row.selection);
    EXPECT_EQ(ResetCard().result, row.expected) << row.finds[1] << ' ' << row.selection;
  }
}

TEST_F(IcrTool, HasRoomForLongMessages) {
  const std::string everywhere(2 * 40960, 'A');
  ASSERT_EQ(OpenReaderA("ICR-COM1", ReaderKindIcr), 1);
  for (const std::int64_t length : {SIMULATOR_TRUE_LENGTH, INT64_C(-1), INT64_C(0x7FFFFFFF)}) {
    module.Answer("SDT_ReadBaseMsg", 0x90, everywhere.c_str(), length);
    EXPECT_EQ(Send(std::string(8192, 'A')), (Reply{1, ""}));
  }
  module.Answer("SDT_ReadBaseMsg", 0x41, everywhere.c_str());
  EXPECT_EQ(Send(""), (Reply{0, ""}));
}

/// It knows no open and closed: every close goes to the library.
TEST_F(IcrTool, ClosesEachTime) {
  ASSERT_EQ(OpenReaderA("ICR-COM1", ReaderKindIcr), 1);
  NewCalls();
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_EQ(CloseReader(), 0);
  EmptySlots();
  EXPECT_EQ(NewCalls(),
            "SDT_ClosePort(1) = 0x90\nSDT_ClosePort(1) = 0x1\nSDT_ClosePort(1) = 0x1\n");
}

}  // namespace
}  // namespace orvane_test
