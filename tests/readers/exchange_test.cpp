#include "readers/driver_test.h"

namespace orvane_test {
namespace {

using Results = std::vector<std::int64_t>;

enum Trait : unsigned {
  kWordIsResult = 1,
  kWordInReply = 2,
  kStrips = 4,
  kShowsSecondStatus = 8,
  kConfirmsSecondEnd = 16
};

// How one driver exchanges a command, and how it differs from the others.
struct Driver {
  const char* name;
  const SimulatedReader& reader;
  const char* slot;  // null: the one after opening
  const char* call;  // of the vendor's library; * stands for the command
  unsigned traits;   // of Trait
  Results failures;  // results of a call that failed
  const char* atrCall;
  Results atrFailures;
  std::size_t longestAtr = 256;
  std::size_t longestReply = 256;
  std::size_t longestCommand = 4096;

  bool Is(Trait trait) const { return (traits & trait) != 0; }
  std::string Function() const { return std::string(call).substr(0, std::string(call).find('(')); }
  std::int64_t Success() const { return Is(kWordIsResult) ? 0x9000 : 0; }
};

void PrintTo(const Driver& driver, std::ostream* out) { *out << driver.name; }

constexpr std::int64_t kAnyError = 0x8010001F;

const Results kNone, kPcscError{kAnyError}, kOne{1}, kMinusOne{-1}, kNotZero{1, -1},
    kCardErrors{kAnyError, 0x80100069}, kNotSuccess{0x6103, 0}, kWdErrors{0xFFFF, 0x6FF0};
constexpr unsigned kPcscTraits = kWordInReply | kStrips | kShowsSecondStatus;
constexpr unsigned kStrippedReply = kWordInReply | kStrips;

const Driver kDrivers[] = {
    {"Pcsc", kPcsc, nullptr, "SCardTransmit(0xFFFFFFFFEA010001, 1, *)", kPcscTraits, kCardErrors,
     "SCardGetAttrib", kPcscError},
    {"PcscByControlCode", kPcsc, "01", "SCardControl(0xFFFFFFFFEA010001, 0x312EE4, *)", kPcscTraits,
     kCardErrors, "SCardControl", kPcscError},
    {"D8Contactless", kD8, nullptr, "dc_pro_commandlink(1, *, 10, 56)", kStrippedReply, kNotZero,
     "dc_pro_resethex", kOne, 128, 256, 255},
    {"D8Contact", kD8, "01", "dc_cpuapdu(1, *)", kStrippedReply, kNotZero, "dc_cpureset_hex", kOne,
     128, 256, 255},
    {"Bsit", kBsit, nullptr, "bsit_SendApdu(0, *)", kStrippedReply, kNotZero, "bsit_ResetCard",
     kOne},
    {"S5009", kS5009, nullptr, "ExchangeAPDU(3, \"*\", 10)", kWordInReply, kNotZero,
     "Mifare_SearchCard", kMinusOne, 256, 128, 133},
    {"S5009Ats", kS5009Ats, nullptr, "ExchangeAPDU(3, \"*\", 10)", kWordInReply, kNotZero,
     "Mifare_GetATS", kMinusOne, 256, 128, 133},
    {"TyCom", kTyCom, "02", "TY_Dtsi_api(0, 2, *)", kWordIsResult, kNone, "TY_Dreset", kNotSuccess},
    {"TyUsb", kTyUsb, "02", "TYKey_SendCommand(-1000, *)", kWordIsResult | kShowsSecondStatus,
     kNone, "TYKey_ColdReset", kNotSuccess},
    {"Wd", kWd, nullptr, "ICC_tsi_api(1, *)", kWordIsResult | kWordInReply | kConfirmsSecondEnd,
     kWdErrors, "ICC_tsi_api", kWdErrors, 256, 256, 255}};

// What a call of the vendor's library is to give.
struct Prepared {
  std::int64_t result;
  std::string reply;
  std::int64_t length = SIMULATOR_TRUE_LENGTH;
};

// What the card answers.
struct Answer {
  std::string data;
  const char* word;
  std::int64_t length = SIMULATOR_TRUE_LENGTH;  // reported of the reply

  std::string Reply(const Driver& driver) const {
    return driver.Is(kWordInReply) ? data + word : data;
  }

  Prepared By(const Driver& driver) const {
    return {driver.Is(kWordIsResult) ? std::stol(word, nullptr, 16) : 0, Reply(driver), length};
  }
};

enum class Given {
  kNothing,
  kGood,         // result 1 and the reply, by the driver's rule
  kShown,        // result 0 and the first two octets of the reply
  kShownSecond,  // the same, of the second reply where the driver shows that
};

struct Row {
  const char* name;
  std::vector<Answer> answers;
  Given given;
};

Reply Expected(const Driver& driver, const Row& row) {
  const Given given = row.given;
  if (given == Given::kNothing) return {0, ""};
  const bool last =
      given == Given::kGood || (given == Given::kShownSecond && driver.Is(kShowsSecondStatus));
  std::string reply = (last ? row.answers.back() : row.answers.front()).Reply(driver);
  if (given == Given::kGood) {
    if (driver.Is(kStrips) && reply.size() > 4) reply.resize(reply.size() - 4);
    return {1, reply};
  }
  reply.resize(4, '0');  // the area is clear before each call
  return {0, reply};
}

class Exchange : public DriverTest, public testing::WithParamInterface<Driver> {
 protected:
  Exchange() : DriverTest(GetParam().reader) {}
  void SetUp() override { OpenAnew(driver.slot); }

  // The line of the journal for a command.
  std::string Call(const std::string& command) const {
    std::string call = driver.call;
    return call.replace(call.find('*'), 1, command) + '\n';
  }

  // Sends a command. The first call is to carry it, and a second one, if there is one, GET
  // RESPONSE with this Le.
  void Expect(const char* name, const std::vector<Prepared>& calls, const Reply& expected,
              const char* secondLength = "03") {
    SCOPED_TRACE(name);
    std::string expectedCalls;
    for (const Prepared& call : calls) {
      module.Answer(driver.Function().c_str(), call.result, call.reply.c_str(), call.length);
      expectedCalls +=
          Call(expectedCalls.empty() ? "00B0000003" : "00C00000" + std::string(secondLength));
    }
    EXPECT_EQ(Send("00B0000003"), expected);
    EXPECT_EQ(NewCallsWithoutResults(), expectedCalls);
  }

  const Driver& driver = GetParam();
  const Prepared more = Answer{"", "6103"}.By(driver);
  const Reply moreShown{0, driver.Is(kWordInReply) ? "6103" : "0000"};
};

TEST_P(Exchange, FollowsTheStatusWord) {
  const std::size_t most = driver.longestReply - (driver.Is(kWordInReply) ? 2 : 0);
  const std::string longest(2 * most, '1');
  const Row rows[] = {
      {"success alone", {{"", "9000"}}, Given::kGood},
      {"one octet and success", {{"01", "9000"}}, Given::kGood},
      {"data and success", {{"010203", "9000"}}, Given::kGood},
      {"longest reply", {{longest, "9000"}}, Given::kGood},
      {"error", {{"", "6A82"}}, Given::kShown},
      {"data and warning", {{"0102", "6282"}}, Given::kShown},
      {"almost success", {{"", "9001"}}, Given::kShown},
      {"more data", {{"", "6103"}, {"010203", "9000"}}, Given::kGood},
      {"more data of 256 octets", {{"", "6100"}, {longest, "9000"}}, Given::kGood},
      {"more data that is none", {{"", "6103"}, {"", "9000"}}, Given::kGood},
      {"more data twice", {{"", "6103"}, {"", "6104"}}, Given::kShownSecond},
      {"more data, then an error", {{"", "6103"}, {"", "6F00"}}, Given::kShownSecond},
      {"more data, then data and a warning", {{"", "6103"}, {"0102", "6282"}}, Given::kShownSecond},
      {"length 257", {{"", "9000", 257}}, Given::kNothing},
      {"length -1", {{"", "9000", -1}}, Given::kNothing},
      {"length 300 of more data", {{"", "6103", 300}}, Given::kNothing},
      {"more data, then length 257", {{"", "6103"}, {"", "9000", 257}}, Given::kShown},
  };
  for (const Row& row : rows) {
    std::vector<Prepared> calls;
    for (const Answer& answer : row.answers) calls.push_back(answer.By(driver));
    Expect(row.name, calls, Expected(driver, row), row.answers.front().word + 2);
  }
}

TEST_P(Exchange, EndsWithACallThatFails) {
  for (const std::int64_t failure : driver.failures) {
    Expect("at once", {{failure, "9000"}}, {0, ""});
    Expect("behind more data", {more, {failure, "01029000"}}, moreShown);
  }
}

// A reply too short to hold the status word is none, unless the word comes as the result.
TEST_P(Exchange, ReadsNoStatusWordThatIsNotThere) {
  for (const char* reply : {"", "90"}) {
    const Reply good{1, reply};
    const bool goodSecond = driver.Is(kWordIsResult) && !driver.Is(kConfirmsSecondEnd);
    Expect("at once", {{driver.Success(), reply}}, driver.Is(kWordIsResult) ? good : Reply{0, ""});
    Expect("behind more data", {more, {driver.Success(), reply}}, goodSecond ? good : moreShown);
  }
  // Nor is what the first reply left where the second one is shorter than it says.
  const std::int64_t two = driver.longestReply == 128 ? 4 : 2;  // of S5009 characters
  Expect("cut short", {more, {driver.Success(), "90", two}}, {1, "9000"});
}

TEST_P(Exchange, SendsTheLongestCommand) {
  const std::string longest(2 * driver.longestCommand, 'A');
  EXPECT_EQ(Send(longest + "AA"), (Reply{0, ""}));
  EXPECT_EQ(NewCalls(), "");
  const Answer good{"", "9000"};
  module.Answer(driver.Function().c_str(), driver.Success(), good.Reply(driver).c_str());
  EXPECT_EQ(Send(longest), (Reply{1, good.Reply(driver)}));
  EXPECT_NE(NewCalls().find(longest), std::string::npos);
}

// What is reported of an ATR is not trusted.
TEST_P(Exchange, ReadsTheAtr) {
  const std::string longest(2 * driver.longestAtr, 'A');
  const Reply none{0, kUntouched};
  const struct {
    std::string atr;
    std::int64_t length;
    Reply expected;
  } rows[] = {
      {"3B0102", SIMULATOR_TRUE_LENGTH, {1, "3B0102"}},
      {"3B0102", 1, {1, "3B"}},
      {"3B", 3, {1, "3B0000"}},
      {"", SIMULATOR_TRUE_LENGTH, {1, ""}},
      {longest, SIMULATOR_TRUE_LENGTH, {1, longest}},
      {longest, static_cast<std::int64_t>(driver.longestAtr) + 1, none},
      {"3B", 0x7FFFFFFF, none},
      {"3B", -1, none},
  };
  for (const auto& row : rows) {
    module.Answer(driver.atrCall, driver.Success(), row.atr.c_str(), row.length);
    EXPECT_EQ(ResetCard(), row.expected) << row.atr << ' ' << row.length;
  }
  for (const std::int64_t failure : driver.atrFailures) {
    module.Answer(driver.atrCall, failure, "3B0102");
    EXPECT_EQ(ResetCard(), none) << failure;
  }
}

INSTANTIATE_TEST_SUITE_P(Drivers, Exchange, testing::ValuesIn(kDrivers),
                         [](const auto& driver) { return driver.param.name; });

}  // namespace
}  // namespace orvane_test
