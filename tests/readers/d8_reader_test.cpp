#include <chrono>

#include "readers/driver_test.h"

namespace orvane_test {
namespace {

class D8Reader : public DriverTest {
 protected:
  D8Reader() : DriverTest("dcrf32") {}

  void Open(const char* slot) {
    StartAnew();
    ASSERT_EQ(OpenReaderA("COM1", ReaderKindD8), 1);
    ChangeSlot(slot);
    NewCalls();
  }
};

TEST_F(D8Reader, OpensPorts) {
  const char* const com1 = "dc_init(0, 115200) = 1\ndc_config_card(1, 0x41) = 0\n";
  const char* const usb = "dc_init(100, 115200) = 1\ndc_config_card(1, 0x41) = 0\n";
  const OpenRow rows[] = {
      {nullptr, 1, 1, com1},
      {nullptr, 100, 1, usb},
      {nullptr, 101, 1, usb},
      {nullptr, 2, 0, "dc_init(1, 115200) = -1\n"},
      {nullptr, 0, 0, "dc_init(-1, 115200) = -1\n"},
      {nullptr, 65537, 1, com1},  // 16 bits go to the library
      {nullptr, INT32_MIN, 0, "dc_init(-1, 115200) = -1\n"},
      {"COM1", 0, 1, com1},
      {"reader at COM1!", 0, 1, com1},
      {"COM100(D8USB)", 0, 1, usb},
      {"COM5 COM100(D8USB)", 0, 1, usb},
      {"COM100", 0, 1, usb},
      {"COM", 0, 0, "dc_init(-1, 115200) = -1\n"},
      {"COM99999999999", 0, 0, "dc_init(-2, 115200) = -1\n"},
      {"USB1", 0, 0, ""},
      {"com1", 0, 0, ""},
      {"", 0, 0, ""},
  };
  for (const OpenRow& row : rows) {
    StartAnew();
    EXPECT_EQ(row.Open(ReaderKindD8), row.expected) << row;
    EXPECT_EQ(NewCalls(), row.calls) << row;
  }
}

TEST_F(D8Reader, StaysOpenWhenTheCardTypeIsRefused) {
  module.Answer("dc_config_card", 1);
  EXPECT_EQ(OpenReader(1, ReaderKindD8, 9600), 0);
  EXPECT_EQ(ResetCard(), (Reply{1, kCardAtr}));
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_TRUE(NewCalls().ends_with("dc_exit(1) = 0\n"));
}

TEST_F(D8Reader, ClosesWhateverTheLibrarySays) {
  Open("00");
  module.Answer("dc_exit", 7);
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_EQ(NewCalls(), "dc_exit(1) = 7\n");
  EXPECT_EQ(ResetCard(), (Reply{0, kUntouched}));
  EXPECT_EQ(NewCalls(), "");
  EXPECT_EQ(Send("00A40000"), (Reply{0, ""}));
  EXPECT_EQ(NewCalls(), "dc_pro_commandlink(-1, 00A40000, 10, 56) = -1\n");

  // A failed open leaves its result as the handle.
  module.Answer("dc_init", 0);
  EXPECT_EQ(OpenReader(1, ReaderKindD8, 9600), 0);
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_EQ(NewCalls(), "dc_init(0, 115200) = 0\ndc_exit(0) = -1\n");
}

TEST_F(D8Reader, SelectsTheSeatsTwelveToFifteen) {
  Open("00");
  for (const char* slot : {"00", "01", "0B", "10", "FF", "", "G0"}) {
    ChangeSlot(slot);
    EXPECT_EQ(NewCalls(), "") << slot;
  }
  for (const auto& [slot, number] :
       {std::pair{"0C", "12"}, {"0d", "13"}, {"0E", "14"}, {"0F", "15"}}) {
    ChangeSlot(slot);
    EXPECT_EQ(NewCalls(), std::string("dc_setcpu(1, ") + number + ") = 0\n");
  }
  module.Answer("dc_setcpu", 1);  // its result decides nothing
  ChangeSlot("0C");
  NewCalls();
  EXPECT_EQ(ResetCard(), (Reply{1, kCardAtr}));
  EXPECT_EQ(NewCalls(), "dc_cpureset_hex(1) = 0 \"3B6A0000803180664F5256414E45\"\n");
}

TEST_F(D8Reader, BringsUpACardInTheFieldStepByStep) {
  const std::pair<const char*, std::string> steps[] = {
      {"dc_reset", "dc_reset(1, 1)"},
      {"dc_request", "dc_request(1, 1)"},
      {"dc_anticoll", "dc_anticoll(1, 0)"},
      {"dc_select", "dc_select(1, 3735928559)"},
      {"dc_pro_resethex", "dc_pro_resethex(1)"},
  };
  const auto reset = [&](std::size_t failing) {
    Open("00");
    for (std::size_t step = 0; step < std::size(steps); ++step) {
      const bool isNumber = std::string(steps[step].first) == "dc_anticoll";
      module.Answer(steps[step].first, step == failing ? 1 : 0, isNumber ? "DEADBEEF" : "3B");
    }
    return ResetCard();
  };
  std::string calls;
  for (std::size_t failing = 0; failing < std::size(steps); ++failing) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(reset(failing), (Reply{0, kUntouched}));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(10 * failing));
    calls += steps[failing].second + '\n';
    EXPECT_EQ(CallsWithoutResults(NewCalls()), calls);
  }
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(reset(std::size(steps)), (Reply{1, "3B"}));
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(50));
  EXPECT_EQ(CallsWithoutResults(NewCalls()), calls);
}

TEST_F(D8Reader, ReadsTheAtrFromText) {
  const std::string longest(256, 'A');
  const struct {
    const char* name;
    std::int64_t result;
    const char* atr;
    std::int64_t length;
    Reply expected;
  } rows[] = {
      {"five octets", 0, "3B01020304", SIMULATOR_TRUE_LENGTH, {1, "3B01020304"}},
      {"none", 0, "", SIMULATOR_TRUE_LENGTH, {1, ""}},
      {"less than reported", 0, "3B", 4, {1, "3B000000"}},
      {"more than reported", 0, "3B0102", 1, {1, "3B"}},
      {"all that the text holds", 0, longest.c_str(), SIMULATOR_TRUE_LENGTH, {1, longest}},
      {"more than the text holds", 0, longest.c_str(), 129, {0, kUntouched}},
      {"length 255", 0, "3B00", 255, {0, kUntouched}},
      {"failure", 1, "3B00", SIMULATOR_TRUE_LENGTH, {0, kUntouched}},
  };
  for (const auto& [slot, function] :
       {std::pair{"00", "dc_pro_resethex"}, {"01", "dc_cpureset_hex"}}) {
    for (const auto& row : rows) {
      Open(slot);
      module.Answer(function, row.result, row.atr, row.length);
      EXPECT_EQ(ResetCard(), row.expected) << slot << ' ' << row.name;
    }
  }
}

TEST_F(D8Reader, SendsAtMost255Octets) {
  for (const auto& [slot, function] :
       {std::pair{"00", "dc_pro_commandlink"}, {"01", "dc_cpuapdu"}}) {
    Open(slot);
    EXPECT_EQ(Send(std::string(512, 'A')), (Reply{0, ""}));
    EXPECT_EQ(NewCalls(), "");
    module.Answer(function, 0, "9000");
    EXPECT_EQ(Send(std::string(510, 'A')), (Reply{1, "9000"}));
    EXPECT_NE(NewCalls().find(std::string(510, 'A')), std::string::npos);
  }
}

}  // namespace
}  // namespace orvane_test
