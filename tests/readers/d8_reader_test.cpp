#include <chrono>

#include "readers/driver_test.h"

namespace orvane_test {
namespace {

using D8Reader = DriverOf<kD8>;

TEST_F(D8Reader, StaysOpenWhenTheCardTypeIsRefused) {
  module.Answer("dc_config_card", 1);
  EXPECT_EQ(OpenReader(1, ReaderKindD8, 9600), 0);
  EXPECT_EQ(ResetCard(), (Reply{1, kCardAtr}));
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_TRUE(NewCalls().ends_with("dc_exit(1) = 0\n"));
}

TEST_F(D8Reader, ClosesWhateverTheLibrarySays) {
  OpenAnew("00");
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
  OpenAnew("00");
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
  std::string calls;
  for (std::size_t failing = 0; failing <= std::size(steps); ++failing) {
    OpenAnew();
    for (std::size_t step = 0; step < std::size(steps); ++step) {
      const bool isNumber = std::string(steps[step].first) == "dc_anticoll";
      module.Answer(steps[step].first, step == failing ? 1 : 0, isNumber ? "DEADBEEF" : "3B");
    }
    const bool fails = failing < std::size(steps);
    if (fails) calls += steps[failing].second + '\n';
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(ResetCard(), fails ? (Reply{0, kUntouched}) : (Reply{1, "3B"}));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(10 * failing));
    EXPECT_EQ(NewCallsWithoutResults(), calls);
  }
}

}  // namespace
}  // namespace orvane_test
