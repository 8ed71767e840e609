#include <gtest/gtest.h>

#include "host/run_program.h"

namespace host_test {
namespace {

class TestCommand : public testing::Test {
 protected:
  WorkingFolder folder;
};

TEST_F(TestCommand, RunsEachCaseUpToItsFirstFailure) {
  const struct {
    const char *options, *script;
    int exitCode;
    const char *out, *err;
  } rows[] = {
      {"", "$ A\n@reset()\n00A40000\n; expect 9000\n$ B\n%X = 1\n", 0,
       "script\n|ok       A  |1         1|-        B  |0         0|"
       "done  2 cases: 1 passed, 1 without an expectation\ntime ",
       ""},
      {"",
       "%A = 1\n$ B\n%B = 11\n@compare(%B,12,1)\n%B = 13\n$ C\n@compare(%B,11,1)\n$ D\n%U = "
       "@RSAPUBENC(FF,3,FF)\n$ E\n",
       1,
       "- |(before the first heading)|FAIL     B |ok       C |BROKEN   D |-        E |"
       "\nB\nscript:4: not as expected: @compare(%B,12,1)\n  left   11\n  right  12\n|"
       "\nD\nscript:9: @RSAPUBENC failed: |\nfailed  5 cases: 1 passed, 1 failed, "
       "1 broken off, 2 without",
       ""},
      {"", "$ A\n%U = @RSAPUBENC(FF,3,FF)\n$ B\n@compare(1,1,1)\n", 3,
       "BROKEN   A|ok       B|failed  2 cases", ""},
      {"", "$ A\n@compare(1,1,1)\n$ B\n%U\n", 3, "", "script:4: undefined variable %U\n"},
      {"", "$ A\n@OPENREADER(nowhere)\n$ B\n00A40000\n", 4,
       "BROKEN   A|not run  B  there was trouble with reader or card|"
       "script:2: can't open the reader nowhere (PC/SC)|",
       ""},
      {"-r nowhere", "$ A\n@compare(1,1,1)\n", 4, "BROKEN   A|script:1: can't open", ""},
      {"", "$ A\n@compare(1,1,1)\n@stop()\n%U\n$ B\n", 0,
       "ok       A|not run  B  @stop() stands before it|2 cases: 1 passed, 1 not run", ""},
      {"--fail-fast", "$ A\n@compare(1,2,1)\n$ B\n", 1,
       "FAIL     A|not run  B  a case failed before it|1 failed, 1 not run", ""},
      {"--only two", "%A = 1\n$ one\n@compare(1,2,1)\n$ Case Two\n@compare(%A,1,1)\n", 0,
       "(before the first heading)|ok       Case Two|1 passed, 1 without an expectation, 1 passed "
       "over",
       ""},
      {"--only three", "%A = 1\n$ one\n", 2, "", "orvane: no case's name has \"three\"\n"},
      {"", "; nothing\n\n", 3, "", "orvane: script has no case\n"},
      {"other", "$ A\n00A40000\n", 3, "", "other:2: an expectation stands below the command"},
      {"-q", "$ A\n@compare(1,1,1)\n$ B\n@compare(1,2,1)\n", 1, "\nB\nscript:4: not as", ""},
      {"-v --tlv", "$ A\n00A40000\n; expect 9000\n", 0,
       "\nA\n|>>   00 A4|6F  7|as expected|ok       A", ""},
      {"--junit script", "$ A\n", 2, "", "orvane: a report would take the place of script\n"},
      {"--junit ./x --html x", "$ A\n", 2, "", "orvane: a report would take the place of ./x\n"},
      {"--html no/folder", "$ A\n", 5, "", "orvane: can't write no/folder: "},
      {"--junit -", "$ A\n", 2, "", "orvane: a report goes to a file"},
      {"- -", "$ A\n", 2, "", "orvane: standard input can be read once\n"},
  };
  WriteFile("other", "$ A\n; expect 9000\n");
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.options) + '\n' + row.script);
    WriteFile("script", row.script);
    const Outcome outcome = RunOrvane(std::string("test --simulate ") + row.options + " script");
    EXPECT_EQ(outcome.exitCode, row.exitCode) << outcome.err;
    ExpectInOrder(outcome.out, row.out);
    EXPECT_EQ(outcome.err.substr(0, std::string(row.err).size()), row.err);
    EXPECT_EQ(outcome.err.empty(), *row.err == '\0') << outcome.err;
    // In a pipe there is no line that moves, and nothing goes out before all is known to be right.
    EXPECT_EQ(outcome.out.find('\r'), std::string::npos);
    EXPECT_EQ(outcome.out.empty(), *row.out == '\0') << outcome.out;
  }
}

TEST_F(TestCommand, BeginsEachFileWithItsOwnReadersAndDefinitions) {
  WriteFile("first", "$ A\n%D = 2\n%L = 3\n@setreader(5)\n@compare(1,2,1)\n");
  WriteFile("second", "$ B\n@compare(%D,1,1)\n@compare(%L,3,1)\n00A40000\n; expect 9000\n");
  const Outcome outcome = RunOrvane("test --simulate -D D=1 --tap first second second");
  EXPECT_EQ(outcome.exitCode, 1);
  ExpectInOrder(
      outcome.out,
      "TAP version 13\n1..3\nnot ok 1 - A\n  ---\n  file: \"first\"\n  line: 5\n  message: "
      "|not as expected|  ...\nok 2 - B\nok 3 - B\n");
}

// The value from before a case that fails is the one that is sent.
TEST_F(TestCommand, HidesWhatTurnsOutToBeSecretWherePartsArePassedOver) {
  WriteFile("script",
            "$ A\n%D = 4711471147114711\n%E = 00200080\n@compare(1,2,1)\n%D = 11\n%E = 00A40000\n"
            "$ B\n%F = 4712471247124712\n%F = %F\n$ C\n00200080 09 24 %D\n; expect 24 %D 9000\n$ "
            "D\n%E 09 24 %F\n");
  for (const char* options : {"-v", "--tap", "--junit report", "--html report"}) {
    const Outcome outcome = RunOrvane(std::string("test --simulate ") + options + " script");
    const std::string all = outcome.out + outcome.err + ReadText("report");
    EXPECT_FALSE(Shows(all, "47114711") || Shows(all, "47 11 47 11") || Shows(all, "47124712"))
        << all;
    EXPECT_TRUE(Shows(all, "; expect ** %D **")) << all;
  }
}

}  // namespace
}  // namespace host_test
