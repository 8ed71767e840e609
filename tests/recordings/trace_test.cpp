// What orvane trace makes of a recording.

#include <gtest/gtest.h>

#include "session.h"

namespace host_test {
namespace {

class TraceOfRecording : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(RunOrvane("apdu --simulate --record s" + kSessionApdus).exitCode, 0);
  }

  WorkingFolder folder;
};

TEST_F(TraceOfRecording, IsThatOfARunWithEveryCommand) {
  const Outcome shown = RunOrvane("trace s");
  EXPECT_EQ(shown.exitCode, 0);
  ExpectInOrder(
      shown.out,
      "reader Simulated Reader 0 (PC/SC)\n|ATR  3B 6A|>>   00 A4 00 00  02  10 01   SELECT\n"
      "      SW   612B|>>   00 C0 00 00  2B   GET RESPONSE|** (8 bytes)   VERIFY\n|SW   6A83");
  EXPECT_FALSE(Shows(shown.out, "took"));
  EXPECT_TRUE(Shows(RunOrvane("trace s --times").out, " s, took "));
  // Nothing in it steers a terminal, and no secret that was recorded is shown.
  RunOrvane("apdu --simulate --show-secrets --record t 0020008008241234FFFFFFFFFF");
  WriteFile("t", std::regex_replace(ReadText("t"), std::regex("Simulated"), "\\u001b[2J"));
  const std::string plain = RunOrvane("trace t").out;
  EXPECT_TRUE(Shows(plain, "\\x1B[2J")) << plain;
  EXPECT_FALSE(Shows(plain, "\x1B") || Shows(plain, "24 12 34")) << plain;
  EXPECT_TRUE(Shows(RunOrvane("trace t --show-secrets").out, "24 12 34"));
  WriteFile("t", ReadText("s").substr(0, ReadText("s").size() - 5));
  EXPECT_EQ(RunOrvane("trace t").err, "orvane: t:9: this line is cut off, and passed over\n");
}

TEST_F(TraceOfRecording, ShowsWhereTwoSessionsPart) {
  const struct {
    const char *from, *to, *out;
    int exitCode;
  } rows[] = {
      {"took_us\":", "took_us\":9", "5 same commands, same responses\n", 0},
      {"\"6A83\"", "\"6A82\"",
       "s:7, t:7: another response to 00 B2 03 0C 00   READ RECORD, from octet 2 on\n"
       "  6A 83  record not found|\n  6A 82  file or application not found|5 same commands, 1 "
       "other response\n",
       1},
      {"00B2030C00", "00B2040C00",
       "s:7, t:7: other commands from here on\n  00 B2 03 0C 00   READ RECORD\n  00 B2 04 0C 00|"
       "3 same commands, same responses\n",
       1},
      {"\"sw\":\"6A83\"", "\"failed\":\"0x80100069\"", "  6A 83|\n  failed: 0x80100069\n", 1},
      {"3B6A", "3B6B", "another ATR\n  3B 6A|\n  3B 6B", 1},
      {"[^\n]*00B2010C00[^\n]*\n", "", "s:8: here alone\n  00 B2 01 0C 00   READ RECORD\n4 same",
       1},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.from);
    WriteFile("t", std::regex_replace(ReadText("s"), std::regex(row.from), row.to));
    const Outcome outcome = RunOrvane("trace s --diff t");
    EXPECT_EQ(outcome.exitCode, row.exitCode);
    ExpectInOrder(outcome.out, row.out);
  }
}

TEST_F(TraceOfRecording, BecomesAScriptThatRepeatsIt) {
  const Outcome script = RunOrvane("trace s --script");
  WriteFile("again", script.out);
  const Outcome again = RunOrvane("run --replay s -D SECRET1=241234FFFFFFFFFF again");
  EXPECT_EQ(again.exitCode, 0) << again.err;
  EXPECT_TRUE(Shows(again.out, "4 commands sent, 5 expectations met")) << again.out;
  EXPECT_EQ(RunOrvane("run --simulate -D SECRET1=240000FFFFFFFFFF again").exitCode, 1);
  // What no script can send, or the library does not hand over.
  WriteFile("t", ReadText("s") +
                     R"({"event":"exchange","reader":1,"command":"00B00000","failed":"0x80100069"}
{"event":"exchange","reader":1,"command":"00B00001","response":"0102","sw":"6282"}
{"event":"exchange","reader":1,"command":"00D60000FF)" +
                     std::string(510, '0') + R"(","sw":"9000"})" + "\n");
  ExpectInOrder(RunOrvane("trace t --script").out,
                "\n; line 10, no response: 00B00000\n00B00001\n; expect 0102\n; line 12, too long "
                "for a script");
}

}  // namespace
}  // namespace host_test
