// A recording in the card's place.

#include <gtest/gtest.h>

#include "session.h"

namespace host_test {
namespace {

class Replay : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(RunOrvane("apdu --simulate --record s" + kSessionApdus).exitCode, 0);
  }

  WorkingFolder folder;
};

// What a run shows behind its reader.
std::string ShownBy(const std::string& arguments) {
  const Outcome outcome = RunOrvane(arguments);
  EXPECT_EQ(outcome.exitCode, 0) << arguments << '\n' << outcome.err;
  return outcome.out.substr(std::min(outcome.out.find('\n'), outcome.out.size()));
}

TEST_F(Replay, GivesEveryReaderWhatWasRecorded) {
  const std::string shown = ShownBy("apdu --simulate" + kSessionApdus);
  for (const std::string reader :
       {"1:USB1", "2:COM1", "3:Simulated Reader 0", "5:COM1", "7:COM1", "8:COM1", "12:BSIT:1"}) {
    EXPECT_EQ(ShownBy("apdu --replay s -r '" + reader + "'" + kSessionApdus), shown) << reader;
  }
  // What that records is the same session again, and so is what the program records of others.
  EXPECT_EQ(ShownBy("apdu --replay s --record t" + kSessionApdus), shown);
  EXPECT_EQ(ReadSession("t"), ReadSession("s"));
  EXPECT_EQ(ShownBy("apdu --simulate -r 12:BSIT:1 --record u" + kSessionApdus), shown);
  EXPECT_EQ(ShownBy("apdu --replay u" + kSessionApdus), shown);
}

TEST_F(Replay, EndsAtTheFirstCommandThatDiffers) {
  const struct {
    const char *options, *script;
    int exitCode;
    const char* err;
  } rows[] = {
      {"", "@reset()\n00A40000021001\n0020008008111111111111111A\n00B2030C00\n00B2010C00\n", 0, ""},
      {"", "@reset()\n00A40000021001\n00B2010C00\n", 1,
       "<stdin>:3: command 2 is not as recorded\n  sent      00 B2 01 0C 00\n"
       "  recorded  00 20 00 80 08 ** ** ** ** ** ** ** **  s:6\n"},
      {"", "@reset()\n00A40000021001\n00200080071111111111111A\n", 1,
       "<stdin>:3: command 2 is not as recorded\n  sent      00 20 00 80 07 ** ** ** ** ** ** **\n"
       "  recorded  00 20 00 80 08 ** ** ** ** ** ** ** **  s:6\n"},
      {"--any-order", "@reset()\n00B2010C00\n00A40000021001\n00B2030C00\n", 0, ""},
      {"--any-order", "@reset()\n00B2010C00\n00B2010C00\n", 1,
       "<stdin>:3: command 2 is not as recorded\n  sent      00 B2 01 0C 00\n"
       "  recorded  00 A4 00 00 02 10 01  s:4\n"},
      {"",
       "@OPENREADER(SimulatedReader0)\n@reset()\n00A40000021001\n@setreader(1)\n"
       "@OPENREADER(SimulatedReader0)\n00B2010C00\n",
       1, nullptr},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.script);
    const Outcome outcome =
        RunOrvane(std::string("run -q --replay s ") + row.options + " -", row.script);
    EXPECT_EQ(outcome.exitCode, row.exitCode) << outcome.err;
    EXPECT_EQ(outcome.err, row.err != nullptr ? row.err : outcome.err);
  }
  const Outcome behind = RunOrvane("apdu --replay s" + kSessionApdus + " 00B2010C00");
  EXPECT_EQ(behind.exitCode, 1);
  EXPECT_TRUE(Shows(behind.err, "recorded  nothing more  s:10")) << behind.err;
}

// A reader's name and a failed call are the recorded ones.
TEST_F(Replay, HasTheRecordedReadersAndFailures) {
  WriteFile("v", R"({"event":"recording","version":1,"unknown":[{}]}
{"event":"open","reader":1,"kind":"PC/SC","name":"Virtual PCD 00 00","atr":"3B00"}
{"event":"from a later program"}
{"event":"exchange","reader":1,"command":"00A40000","failed":"0x80100069"}
{"event":"exchange","reader":1,"command":"00A40000","response":"01","sw":"6200"}
{"event":"reset","reader":1,"atr":"3B0100"}
{"event":"exchange","reader":1,"command":"00B00000","sw":"9000"}
{"event":"exch)");
  const Outcome outcome = RunOrvane("shell --replay v -r 'Virtual PCD 00 00'",
                                    "@reset()\n00A40000\n00A40000\n@reset()\n00B00000\n");
  ExpectInOrder(outcome.out, "Virtual PCD 00 00|ATR  3B 00|ATR  3B 01 00|9000");
  EXPECT_TRUE(Shows(outcome.err, "no answer from the card or its reader")) << outcome.err;
}

TEST_F(Replay, RefusesWhatIsNoRecording) {
  const std::string whole = ReadText("s");
  const std::string first = whole.substr(0, whole.find('\n') + 1);
  const std::string exchange = R"({"event":"exchange","reader":1,"command":"00A4)";
  const struct {
    std::string content;
    int exitCode;
    const char* err;
  } rows[] = {
      {"", 5, "orvane: f: there is no recording in it\n"},
      {std::string("\0\1\2", 3), 3, "f:1: this is no JSON object\n"},
      {"00A40000\n", 3, "f:1: this is no JSON object\n"},
      {"{}\n", 3, "f:1: it does not say which \"event\" it is\n"},
      {whole.substr(whole.find('\n') + 1), 3,
       "f:1: a recording begins with the event \"recording\"\n"},
      {R"({"event":"recording","version":2})", 3,
       "f:1: a recording of version 2, and only version 1 can be read\n"},
      {first + exchange, 1, nullptr},  // cut off
      {first + exchange + "\n" + exchange + "0000\"}\n", 3, "f:2: this is no JSON object\n"},
      {first + "\n" + exchange + "0\"}\n", 3,
       "f:3: \"command\" is no text of whole octets, in digits 0 to 9 and A to F\n"},
      {first + R"({"event":"exchange","reader":1})", 1, nullptr},
      {first + R"({"event":"exchange","command":"00A40000","at_us":-1})" + "\n", 3,
       "f:2: \"at_us\" is no whole number up to 1000000000000000\n"},
      {first + R"({"event":"exchange","command":"00A40000","sw":"90"})" + "\n", 3,
       "f:2: \"sw\" is no status word of four digits\n"},
      {first + std::string(1 << 20, ' ') + "\n", 3,
       "f:2: this is too long for a recording's line\n"},
      {first + R"({"event":"open","kind":"payment HSM on TCP","name":"10.0.0.5:8000"})", 3,
       "f:2: a payment HSM was recorded: that is no card\n"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.content.substr(0, 200));
    WriteFile("f", row.content);
    const Outcome outcome = RunOrvane("apdu --replay f 00A40000");
    EXPECT_EQ(outcome.exitCode, row.exitCode) << outcome.err;
    EXPECT_EQ(outcome.err, row.err != nullptr ? row.err : outcome.err);
  }
  // As editors store it, and without the end of its last line.
  WriteFile("f", "\xEF\xBB\xBF" + std::regex_replace(whole, std::regex("\n"), "\r\n") + "\r\n");
  EXPECT_EQ(RunOrvane("apdu --replay f" + kSessionApdus).exitCode, 0);
  EXPECT_EQ(RunOrvane("apdu --replay f --record f" + kSessionApdus).exitCode, 2);
  EXPECT_EQ(RunOrvane("apdu --replay f" + kSessionApdus).exitCode, 0);
  EXPECT_EQ(RunOrvane("apdu --simulate --any-order" + kSessionApdus).exitCode, 2);
}

}  // namespace
}  // namespace host_test
