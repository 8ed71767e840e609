#include <gtest/gtest.h>

#include <optional>

#include "readers/reader_host.h"
#include "support/simulated_module.h"

namespace orvane_test {
namespace {

using support::SimulatedModule;

/// How one driver exchanges a command, and how it differs from the others.
struct Driver {
  const char* name;
  const char* vendor;
  int kind;
  const char* reader;
  const char* slot;       ///< null: the one after opening
  const char* function;   ///< of the vendor's library
  const char* callBegin;  ///< its line in the journal, before the command
  const char* callEnd;    ///< and behind it
  bool wordIsResult = false;
  bool wordInReply = true;
  bool strips = false;
  bool showsSecondStatus = false;
  bool confirmsSecondEnd = false;
  std::size_t longestReply = 256;
  std::vector<std::int64_t> failures;  ///< results of a call that failed
};

const Driver kDrivers[] = {
    {.name = "Pcsc",
     .vendor = "winscard",
     .kind = ReaderKindPcsc,
     .reader = "Simulated Reader 0",
     .slot = nullptr,
     .function = "SCardTransmit",
     .callBegin = "SCardTransmit(0xFFFFFFFFEA010001, 1, ",
     .callEnd = ")",
     .strips = true,
     .showsSecondStatus = true,
     .failures = {0x8010001F, 0x80100069}},
    {.name = "PcscByControlCode",
     .vendor = "winscard",
     .kind = ReaderKindPcsc,
     .reader = "Simulated Reader 0",
     .slot = "01",
     .function = "SCardControl",
     .callBegin = "SCardControl(0xFFFFFFFFEA010001, 0x312EE4, ",
     .callEnd = ")",
     .strips = true,
     .showsSecondStatus = true,
     .failures = {0x8010001F, 0x80100069}},
    {.name = "D8Contactless",
     .vendor = "dcrf32",
     .kind = ReaderKindD8,
     .reader = "COM1",
     .slot = nullptr,
     .function = "dc_pro_commandlink",
     .callBegin = "dc_pro_commandlink(1, ",
     .callEnd = ", 10, 56)",
     .strips = true,
     .failures = {1, -1}},
    {.name = "D8Contact",
     .vendor = "dcrf32",
     .kind = ReaderKindD8,
     .reader = "COM1",
     .slot = "01",
     .function = "dc_cpuapdu",
     .callBegin = "dc_cpuapdu(1, ",
     .callEnd = ")",
     .strips = true,
     .failures = {1, -1}},
    {.name = "Bsit",
     .vendor = "STJZZ_BSIT",
     .kind = ReaderKindBsit,
     .reader = "BSIT:1",
     .slot = nullptr,
     .function = "bsit_SendApdu",
     .callBegin = "bsit_SendApdu(0, ",
     .callEnd = ")",
     .strips = true,
     .failures = {1, -1}},
    {.name = "S5009",
     .vendor = "S5009",
     .kind = ReaderKindS5009,
     .reader = "COM1",
     .slot = nullptr,
     .function = "ExchangeAPDU",
     .callBegin = "ExchangeAPDU(3, \"",
     .callEnd = "\", 10)",
     .longestReply = 128,
     .failures = {1, -1}},
    {.name = "TyCom",
     .vendor = "tyreader",
     .kind = ReaderKindTyCom,
     .reader = "COM1",
     .slot = "02",
     .function = "TY_Dtsi_api",
     .callBegin = "TY_Dtsi_api(0, 2, ",
     .callEnd = ")",
     .wordIsResult = true,
     .wordInReply = false,
     .failures = {}},
    {.name = "TyUsb",
     .vendor = "tykeyint",
     .kind = ReaderKindTyUsb,
     .reader = "USB1",
     .slot = "02",
     .function = "TYKey_SendCommand",
     .callBegin = "TYKey_SendCommand(-1000, ",
     .callEnd = ")",
     .wordIsResult = true,
     .wordInReply = false,
     .showsSecondStatus = true,
     .failures = {}},
    {.name = "Wd",
     .vendor = "wdcrwx",
     .kind = ReaderKindWd,
     .reader = "WDUSB1",
     .slot = nullptr,
     .function = "ICC_tsi_api",
     .callBegin = "ICC_tsi_api(1, ",
     .callEnd = ")",
     .wordIsResult = true,
     .confirmsSecondEnd = true,
     .failures = {0xFFFF, 0x6FF0}},
};

/// What a call of the vendor's library is to give.
struct Prepared {
  std::int64_t result;
  std::optional<std::string> reply;
  std::int64_t length = SIMULATOR_TRUE_LENGTH;
};

/// What the card answers.
struct Answer {
  std::string data;
  const char* word;
  std::int64_t length = SIMULATOR_TRUE_LENGTH;  ///< reported of the reply

  std::string Reply(const Driver& driver) const { return driver.wordInReply ? data + word : data; }

  Prepared By(const Driver& driver) const {
    return {driver.wordIsResult ? std::stol(word, nullptr, 16) : 0, Reply(driver), length};
  }
};

enum class Given {
  kNothing,
  kGood,         ///< result 1 and the reply, by the driver's rule
  kShown,        ///< result 0 and the first two octets of the reply
  kShownSecond,  ///< the same, of the second reply where the driver shows that
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
      given == Given::kGood || (given == Given::kShownSecond && driver.showsSecondStatus);
  std::string reply = (last ? row.answers.back() : row.answers.front()).Reply(driver);
  if (given == Given::kGood) {
    if (driver.strips && reply.size() > 4) reply.resize(reply.size() - 4);
    return {1, reply};
  }
  reply.resize(4, '0');  // the area is clear before each call
  return {0, reply};
}

class Exchange : public testing::TestWithParam<Driver> {
 protected:
  void SetUp() override {
    ASSERT_EQ(OpenReaderA(driver.reader, driver.kind), 1);
    if (driver.slot != nullptr) ChangeSlot(driver.slot);
  }
  void TearDown() override { ReaderTest::EmptySlots(); }

  /// Sends a command. The first call is to carry it, and a second one, if there is one, GET
  /// RESPONSE with this Le.
  void Expect(const char* name, const std::vector<Prepared>& calls, const Reply& expected,
              const char* secondLength = "03") {
    SCOPED_TRACE(name);
    module.Restart();
    std::string expectedCalls;
    std::string command = "00B0000003";
    for (const Prepared& call : calls) {
      module.Answer(driver.function, call.result, call.reply ? call.reply->c_str() : nullptr,
                    call.length);
      expectedCalls += driver.callBegin + command + driver.callEnd + '\n';
      command = std::string("00C00000") + secondLength;
    }
    EXPECT_EQ(Send("00B0000003"), expected);
    EXPECT_EQ(CallsWithoutResults(module.Journal()), expectedCalls);
  }

  const Driver& driver = GetParam();
  const SimulatedModule module{driver.vendor};
  const Prepared more = Answer{"", "6103"}.By(driver);
  const Reply moreShown{0, driver.wordInReply ? "6103" : "0000"};
};

TEST_P(Exchange, FollowsTheStatusWord) {
  const std::size_t most = driver.longestReply - (driver.wordInReply ? 2 : 0);
  const std::string longest(2 * most, '1');
  const Row rows[] = {
      {"success alone", {{"", "9000"}}, Given::kGood},
      {"one octet and success", {{"01", "9000"}}, Given::kGood},
      {"data and success", {{"010203", "9000"}}, Given::kGood},
      {"data that looks like a status word", {{"9000", "9000"}}, Given::kGood},
      {"longest reply", {{longest, "9000"}}, Given::kGood},
      {"error", {{"", "6A82"}}, Given::kShown},
      {"data and warning", {{"0102", "6282"}}, Given::kShown},
      {"one octet and warning", {{"01", "6282"}}, Given::kShown},
      {"wrong Le", {{"", "6C10"}}, Given::kShown},
      {"almost success", {{"", "9001"}}, Given::kShown},
      {"more data", {{"", "6103"}, {"010203", "9000"}}, Given::kGood},
      {"more data of 256 octets", {{"", "6100"}, {longest, "9000"}}, Given::kGood},
      {"more data behind data", {{"0A0B", "6103"}, {"010203", "9000"}}, Given::kGood},
      {"more data that is none", {{"", "6103"}, {"", "9000"}}, Given::kGood},
      {"more data twice", {{"", "6103"}, {"", "6104"}}, Given::kShownSecond},
      {"more data, then an error", {{"", "6103"}, {"", "6F00"}}, Given::kShownSecond},
      {"more data, then data and a warning", {{"", "6103"}, {"0102", "6282"}}, Given::kShownSecond},
      {"length 257", {{"", "9000", 257}}, Given::kNothing},
      {"length 300", {{longest, "9000", 300}}, Given::kNothing},
      {"length 2147483647", {{"", "9000", 0x7FFFFFFF}}, Given::kNothing},
      {"length -1", {{"", "9000", -1}}, Given::kNothing},
      {"length 300 of more data", {{"", "6103", 300}}, Given::kNothing},
      {"length 300 of an error", {{"", "6A82", 300}}, Given::kNothing},
      {"more data, then length 257", {{"", "6103"}, {"", "9000", 257}}, Given::kShown},
      {"more data, then length -1", {{"", "6103"}, {"", "9000", -1}}, Given::kShown},
  };
  for (const Row& row : rows) {
    std::vector<Prepared> calls;
    for (const Answer& answer : row.answers) calls.push_back(answer.By(driver));
    Expect(row.name, calls, Expected(driver, row), row.answers.front().word + 2);
  }
}

TEST_P(Exchange, EndsWithACallThatFails) {
  for (const std::int64_t failure : driver.failures) {
    Expect("at once", {{failure, std::nullopt}}, {0, ""});
    Expect("at once, with a reply", {{failure, "9000"}}, {0, ""});
    Expect("behind more data", {more, {failure, std::nullopt}}, moreShown);
    Expect("behind more data, with a reply", {more, {failure, "01029000"}}, moreShown);
  }
}

/// A reply too short to hold the status word is none, unless the word comes as the result.
TEST_P(Exchange, ReadsNoStatusWordThatIsNotThere) {
  const std::int64_t success = driver.wordIsResult ? 0x9000 : 0;
  for (const char* reply : {"", "90"}) {
    const Reply good{1, reply};
    const bool goodSecond = driver.wordIsResult && !driver.confirmsSecondEnd;
    Expect("at once", {{success, reply}}, driver.wordIsResult ? good : Reply{0, ""});
    Expect("behind more data", {more, {success, reply}}, goodSecond ? good : moreShown);
  }
}

TEST_P(Exchange, TalksToTheCard) {
  const std::string end = driver.strips || !driver.wordInReply ? "" : "9000";
  ASSERT_EQ(ResetCard(), (Reply{1, "3B6A0000803180664F5256414E45"}));
  EXPECT_EQ(Send("00A4040008F04F5256414E4501"),
            (Reply{1,
                   "6F298408F04F5256414E4501A51D500A4F5256414E45205041598701015F2D02656E9F38069F"
                   "1A025F2A02" +
                       end}));
  EXPECT_EQ(Send("00A4040002FFFF"), (Reply{0, "6A82"}));
  module.InsertCard(false);
  EXPECT_EQ(ResetCard(), (Reply{0, kUntouched}));
  EXPECT_EQ(Send("00A4040002FFFF"), (Reply{0, driver.wordInReply ? "" : "0000"}));
  EXPECT_EQ(CloseReader(), 1);
}

INSTANTIATE_TEST_SUITE_P(Drivers, Exchange, testing::ValuesIn(kDrivers),
                         [](const auto& driver) { return driver.param.name; });

}  // namespace
}  // namespace orvane_test
