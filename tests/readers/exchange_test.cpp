#include "readers/driver_test.h"

namespace orvane_test {
namespace {

using Results = std::vector<std::int64_t>;

enum Trait { kWordIsResult = 1, kWordAtEnd = 2, kStrips = 4, kShowsSecond = 8, kConfirms = 16 };

// How one driver exchanges a command, and how it differs from the others.
struct Driver {
  const char* name;
  const SimulatedReader& reader;
  const char* slot;  // null: the one after opening
  std::string call;  // of the vendor's library; * stands for the command
  unsigned traits;
  Results failures;  // results of a call that failed
  const char* atrCall;
  Results atrFailures;
  std::size_t longestAtr = 256, longestResponse = 256, longestCommand = 4096;

  bool Is(Trait trait) const { return (traits & trait) != 0; }
  std::string Function() const { return call.substr(0, call.find('(')); }
  std::int64_t Success() const { return Is(kWordIsResult) ? 0x9000 : 0; }
};

void PrintTo(const Driver& driver, std::ostream* out) { *out << driver.name; }

const Results kNone, kOne{1}, kMinusOne{-1}, kNotZero{1, -1}, kPcscErrors{0x8010001F, 0x80100069},
    kPcscAtrErrors{0x8010001F}, kNotSuccess{0x6103, 0}, kWdErrors{0xFFFF, 0x6FF0};
constexpr unsigned kStripped = kWordAtEnd | kStrips, kPcscTraits = kStripped | kShowsSecond,
                   kWdTraits = kWordIsResult | kWordAtEnd | kConfirms;

const Driver kDrivers[] = {
    {"Pcsc", kPcsc, nullptr, "SCardTransmit(0xFFFFFFFFEA010001, 1, *)", kPcscTraits, kPcscErrors,
     "SCardGetAttrib", kPcscAtrErrors},
    {"PcscByControlCode", kPcsc, "01", "SCardControl(0xFFFFFFFFEA010001, 0x312EE4, *)", kPcscTraits,
     kPcscErrors, "SCardControl", kPcscAtrErrors},
    {"D8Contactless", kD8, nullptr, "dc_pro_commandlink(1, *, 10, 56)", kStripped, kNotZero,
     "dc_pro_resethex", kOne, 128, 256, 255},
    {"D8Contact", kD8, "01", "dc_cpuapdu(1, *)", kStripped, kNotZero, "dc_cpureset_hex", kOne, 128,
     256, 255},
    {"Bsit", kBsit, nullptr, "bsit_SendApdu(0, *)", kStripped, kNotZero, "bsit_ResetCard", kOne},
    {"S5009", kS5009, nullptr, "ExchangeAPDU(3, \"*\", 10)", kWordAtEnd, kNotZero,
     "Mifare_SearchCard", kMinusOne, 256, 128, 133},
    {"TyCom", kTyCom, "02", "TY_Dtsi_api(0, 2, *)", kWordIsResult, kNone, "TY_Dreset", kNotSuccess},
    {"TyUsb", kTyUsb, "02", "TYKey_SendCommand(-1000, *)", kWordIsResult | kShowsSecond, kNone,
     "TYKey_ColdReset", kNotSuccess},
    {"Wd", kWd, nullptr, "ICC_tsi_api(1, *)", kWdTraits, kWdErrors, "ICC_tsi_api", kWdErrors, 256,
     256, 255}};

// What a call of the vendor's library is to give.
struct Prepared {
  std::int64_t result;
  std::string response;
  std::int64_t length = SIMULATOR_TRUE_LENGTH;
};

// What the card answers.
struct Answer {
  std::string data;
  const char* word;
  std::int64_t length = SIMULATOR_TRUE_LENGTH;  // that the library reports

  std::string Response(const Driver& driver) const {
    return driver.Is(kWordAtEnd) ? data + word : data;
  }
  Prepared By(const Driver& driver) const {
    return {driver.Is(kWordIsResult) ? std::stol(word, nullptr, 16) : 0, Response(driver), length};
  }
};

enum class Given {
  kNothing,
  kGood,         // result 1 and the response, by the driver's rule
  kShown,        // result 0 and the first two octets of the response
  kShownSecond,  // the same, of the second response where the driver shows that
};

Reply Expected(const Driver& driver, const std::vector<Answer>& answers, Given given) {
  if (given == Given::kNothing) return {0, ""};
  const bool good = given == Given::kGood;
  const bool last = good || (given == Given::kShownSecond && driver.Is(kShowsSecond));
  std::string response = (last ? answers.back() : answers.front()).Response(driver);
  if (!good) response.resize(4, '0');  // the buffer is clear before each call
  if (good && driver.Is(kStrips) && response.size() > 4) response.resize(response.size() - 4);
  return {good, response};
}

class Exchange : public ReaderTest, public testing::WithParamInterface<Driver> {
 protected:
  void SetUp() override {
    EmptySlots();
    module.Restart();
    ASSERT_EQ(Open(driver.reader), 1);
    if (driver.slot != nullptr) ChangeSlot(driver.slot);
    seen_ = module.Journal().size();
  }

  // The calls since the last look.
  std::string NewCalls() {
    const std::string calls = CallsWithoutResults(module.Journal().substr(seen_));
    seen_ = module.Journal().size();
    return calls;
  }

  // Sends a command. The first call is to carry it, and a second one, if there is one, GET
  // RESPONSE with this Le.
  void Expect(const std::vector<Prepared>& calls, const Reply& expected, const char* le = "03") {
    std::string expectedCalls, command = "00B0000003";
    for (const Prepared& call : calls) {
      module.Answer(driver.Function().c_str(), call.result, call.response.c_str(), call.length);
      std::string line = driver.call;
      expectedCalls += line.replace(line.find('*'), 1, command) + '\n';
      command = std::string("00C00000") + le;
    }
    EXPECT_EQ(Send("00B0000003"), expected);
    EXPECT_EQ(NewCalls(), expectedCalls);
  }

  const Driver& driver = GetParam();
  const support::SimulatedModule module{driver.reader.vendor};
  const Prepared more = Answer{"", "6103"}.By(driver);
  const Reply moreShown{0, driver.Is(kWordAtEnd) ? "6103" : "0000"};

 private:
  std::size_t seen_ = 0;
};

TEST_P(Exchange, FollowsTheStatusWord) {
  const std::string longest(2 * (driver.longestResponse - (driver.Is(kWordAtEnd) ? 2 : 0)), '1');
  const std::pair<std::vector<Answer>, Given> rows[] = {
      {{{"", "9000"}}, Given::kGood},
      {{{"01", "9000"}}, Given::kGood},
      {{{longest, "9000"}}, Given::kGood},
      {{{"", "6A82"}}, Given::kShown},
      {{{"0102", "6282"}}, Given::kShown},
      {{{"", "9001"}}, Given::kShown},
      {{{"", "6103"}, {"010203", "9000"}}, Given::kGood},
      {{{"", "6100"}, {longest, "9000"}}, Given::kGood},
      {{{"", "61FE"}, {"", "9000"}}, Given::kGood},
      {{{"", "6103"}, {"", "6104"}}, Given::kShownSecond},  // only one is followed up
      {{{"", "6103"}, {"0102", "6282"}}, Given::kShownSecond},
      {{{"", "9000", 257}}, Given::kNothing},
      {{{"", "9000", -1}}, Given::kNothing},
      {{{"", "6103", 300}}, Given::kNothing},
      {{{"", "6103"}, {"", "9000", 257}}, Given::kShown},
  };
  for (const auto& [answers, given] : rows) {
    SCOPED_TRACE(answers.front().data + answers.front().word + " of " +
                 std::to_string(answers.front().length));
    std::vector<Prepared> calls;
    for (const Answer& answer : answers) calls.push_back(answer.By(driver));
    Expect(calls, Expected(driver, answers, given), answers.front().word + 2);
  }
}

TEST_P(Exchange, EndsWithACallThatFails) {
  for (const std::int64_t failure : driver.failures) {
    Expect({{failure, "9000"}}, {0, ""});
    Expect({more, {failure, "01029000"}}, moreShown);
  }
}

// A response too short to hold the status word has none, unless the word comes as the result.
TEST_P(Exchange, ReadsNoStatusWordThatIsNotThere) {
  for (const char* response : {"", "90"}) {
    const Reply good{1, response};
    const bool goodSecond = driver.Is(kWordIsResult) && !driver.Is(kConfirms);
    Expect({{driver.Success(), response}}, driver.Is(kWordIsResult) ? good : Reply{0, ""});
    Expect({more, {driver.Success(), response}}, goodSecond ? good : moreShown);
  }
  // Nor is what the first response left where the second one is shorter than it says.
  const std::int64_t two = driver.longestResponse == 128 ? 4 : 2;  // of S5009 characters
  Expect({more, {driver.Success(), "90", two}}, {1, "9000"});
}

TEST_P(Exchange, SendsTheLongestCommand) {
  const std::string longest(2 * driver.longestCommand, 'A');
  EXPECT_EQ(Send(longest + "AA"), (Reply{0, ""}));
  EXPECT_EQ(NewCalls(), "");
  const std::string good = Answer{"", "9000"}.Response(driver);
  module.Answer(driver.Function().c_str(), driver.Success(), good.c_str());
  EXPECT_EQ(Send(longest), (Reply{1, good}));
  EXPECT_NE(NewCalls().find(longest), std::string::npos);
}

// What is reported of an ATR is not trusted.
TEST_P(Exchange, ReadsTheAtr) {
  const std::string longest(2 * driver.longestAtr, 'A');
  const auto tooLong = static_cast<std::int64_t>(driver.longestAtr) + 1;
  const Reply none{0, kUntouched};
  const std::pair<Prepared, Reply> rows[] = {
      {{driver.Success(), "3B0102", 1}, {1, "3B"}},
      {{driver.Success(), "3B", 3}, {1, "3B0000"}},
      {{driver.Success(), ""}, {1, ""}},
      {{driver.Success(), longest}, {1, longest}},
      {{driver.Success(), longest, tooLong}, none},
      {{driver.Success(), "3B", -1}, none},
  };
  const auto expect = [&](const Prepared& call, const Reply& expected) {
    module.Answer(driver.atrCall, call.result, call.response.c_str(), call.length);
    EXPECT_EQ(ResetCard(), expected) << call.result << ' ' << call.response << ' ' << call.length;
  };
  for (const auto& [call, expected] : rows) expect(call, expected);
  for (const std::int64_t failure : driver.atrFailures) expect({failure, "3B0102"}, none);
}

INSTANTIATE_TEST_SUITE_P(Drivers, Exchange, testing::ValuesIn(kDrivers),
                         [](const auto& driver) { return driver.param.name; });

}  // namespace
}  // namespace orvane_test
