#include <gtest/gtest.h>

#include "host/run_program.h"

namespace host_test {
namespace {

// Selects the payment application of the virtual card.
const std::string kSelect = "00 A4 04 00 08 F04F5256414E4501\n";

struct Row {
  std::string name;
  std::string options;
  std::string script;
  int exitCode;
  std::string err;               // the whole standard error; {} is the script's path
  std::vector<std::string> out;  // what standard output shows, in this order
};

std::string WithPath(std::string text, const std::string& path) {
  for (size_t at; (at = text.find("{}")) != text.npos;) text.replace(at, 2, path);
  return text;
}

void ExpectInOrder(const std::string& text, const std::vector<std::string>& parts) {
  size_t at = 0;
  for (const std::string& part : parts) {
    at = text.find(part, at);
    ASSERT_NE(at, text.npos) << part << " is missing in:\n" << text;
    at += part.size();
  }
}

void ExpectRows(const std::vector<Row>& rows) {
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const Folder folder;
    const std::string script = folder.Write("script.orv", row.script);
    const Outcome outcome = RunOrvane(folder, "run " + row.options + " " + script);
    EXPECT_EQ(outcome.exitCode, row.exitCode) << outcome.out;
    EXPECT_EQ(outcome.err, WithPath(row.err, script));
    ExpectInOrder(outcome.out, row.out);
  }
}

TEST(Run, CarriesOutAScript) {
  ExpectRows({
      {"statements, commands and expectations",
       "",
       "; a comment\n$ Select it\n@reset()\n" + kSelect +
           "@compare(%SW,9000,1)\n%FIRST = @strmidh(%RESP,0,1)\n@compare(%FIRST,6F,1)\n"
           "@compare(@strmidh(%ATR,0,1),3B,1)\n",
       0,
       "",
       {"\nSelect it\n", "   3  @reset()\n", "ATR  3B 6A 00 00", "   4  00 A4 04 00 08",
        ">>   00 A4 04 00  08  F0 4F 52 56 41 4E 45 01   SELECT\n", "<<   6F 29 84 08",
        "SW   9000  success\n", "   6  %FIRST = @strmidh(%RESP,0,1)\n", "=    6F\n",
        "ok   6F = 6F\n", "done  1 command sent, 3 expectations met\n"}},
      {"a card's refusal does not stop it",
       "",
       "00A40000021234\n@compare(%SW,6A82,1)\n@compare(%RESP 00,00,1)\n",
       0,
       "",
       {"SW   6A82  file or application not found\n", "2 expectations met\n"}},
      {"it ends at @stop()", "", "%A = 1\n@stop()\n@compare(1,2,1)\n", 0, "", {"@stop()", "done"}},
      {"CR LF, a byte order mark and no last line end",
       "",
       "\xEF\xBB\xBF; first\r\n%A = 12\r\n@compare(%A,12,1)",
       0,
       "",
       {"ok   12 = 12\n"}},
      {"variables of the command line",
       "-D %CMD=00A4000002 -D ID='3F 00'",
       "%CMD %ID\n@compare(%SW,9000,1)\n",
       0,
       "",
       {"02  3F 00   SELECT", "1 expectation met"}},
      {"quiet", "-q --simulate", "$ Title\n00A40000023F00\n", 0, "", {}},
      {"quiet on a reader that nobody named",
       "-q",
       "00A40000023F00\n",
       0,
       "orvane: no reader is named; running on a simulated card\n",
       {}},
      {"colour", "--color always", "00A40000021234\n", 0, "", {"\x1b[31m6A82\x1b[0m"}},
  });
}

TEST(Run, OpensReadersByNameHoweverBlanksStand) {
  const std::string works = "00A40000023F00\n@compare(%SW,9000,1)\n";
  const std::vector<std::string> opened = {"reader Simulated Reader 0 (PC/SC)", "1 expectation"};
  ExpectRows({
      {"from the script", "", "@OPENREADER(Simulated Reader 0)\n" + works, 0, "", opened},
      {"with its kind", "", "@OPENREADER(3:Simulated Reader 0)\n" + works, 0, "", opened},
      {"from a variable", "-D R='Simulated Reader 0'", "@OPENREADER(%R)\n" + works, 0, "", opened},
      {"from the command line", "-r 'Simulated Reader 0'", works, 0, "", opened},
      {"by port", "--simulate -r 1", works, 0, "", {"reader port 1 (PC/SC)", "1 expectation"}},
      {"two side by side", "",
       "@OPENREADER(Simulated Reader 1)\n@setreader(15)\n@OPENREADER(Simulated Reader 0)\n" + works,
       0, "", opened},
      {"another slot", "", "@setslot(01)\n" + works, 0, "", {"1 expectation met"}},
  });
}

TEST(Run, StopsAtAnExpectationThatDoesNotHold) {
  ExpectRows({
      {"not equal",
       "",
       "%A = 6a82\n@compare(%A,9000,1) ; why\n00A40000\n",
       1,
       "{}:2: not as expected: @compare(%A,9000,1) ; why\n  left   6a82\n  right  9000\n"
       "  they should be equal\n",
       {"FAIL 6a82 is not 9000\n"}},
      {"equal",
       "",
       "@compare(AB,AB,0)\n",
       1,
       "{}:1: not as expected: @compare(AB,AB,0)\n  left   AB\n  right  AB\n  they should differ\n",
       {"FAIL AB = AB\n"}},
      {"of a secret",
       "",
       "%PIN = 4711\n@compare(%PIN,4712,1)\n",
       1,
       "{}:2: not as expected: @compare(%PIN,**,**)\n  left   **\n  right  **\n"
       "  they should be equal\n",
       {"FAIL ** is not **\n"}},
  });
}

TEST(Run, CarriesOutTheExamples) {
  const Folder folder;
  for (const char* name : {"payment.orv", "authenticate.orv"}) {
    const std::string script = ORVANE_SOURCE_FOLDER "/examples/" + std::string(name);
    const Outcome outcome = RunOrvane(folder, "run --simulate " + script);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.out << outcome.err;
    // A master key, and the key that is derived from it.
    for (const char* secret : {"4041424344454647", "0B96FA2D051A6E0B"}) {
      EXPECT_EQ(outcome.out.find(secret), std::string::npos) << outcome.out;
    }
  }
}

// Whatever is wrong, the statement's command must not have gone to the card.
TEST(Run, SendsNothingOfAStatementThatIsWrong) {
  const std::string undefined = "{}:1: undefined variable %U\n";
  const std::vector<Row> rows = {
      {"undefined", "", "%U\n", 3, undefined, {}},
      {"undefined behind a command", "", "00A4000002 %U\n", 3, undefined, {}},
      {"undefined in an argument", "", "00A4000002 @strmid(3F00%U %U,0,4)\n", 3, undefined, {}},
      {"undefined in an assignment", "", "%A = @xor(00,%U)\n", 3, undefined, {}},
      {"undefined for a comparison", "", "@compare(%U,00,0)\n", 3, undefined, {}},
      {"undefined for a reader", "", "@OPENREADER(%U)\n", 3, undefined, {}},
      {"odd",
       "",
       "00A40000 0\n",
       3,
       "{}:1: the command has an odd number of digits (9); nothing sent\n",
       {}},
      {"not hexadecimal",
       "",
       "00A4000002 3FOO\n",
       3,
       "{}:1: the command is not hexadecimal: character 13 of 14 is no digit; nothing sent\n",
       {}},
      {"short",
       "",
       "%A = 00A400\n%A\n",
       3,
       "{}:2: the command has 3 bytes, its header alone needs 4; nothing sent\n",
       {}},
      {"empty",
       "",
       "%A = @strmid(00,2,1)\n%A\n",
       3,
       "{}:2: the command is empty; nothing sent\n",
       {}},
      {"long",
       "",
       "%A = " + std::string(300, 'A') + "\n%A %A\n",
       3,
       "{}:2: the statement gives more than 511 characters, the most that a statement can hand "
       "over\n",
       {}},
      {"a failed command",
       "",
       "00D6000008 @SUBKEY(0011,1122334455667788)\n",
       3,
       "{}:1: @SUBKEY failed: is its key 8, 16 or 24 bytes long?\n",
       {}},
      {"an expectation of neither kind",
       "",
       "@compare(00,00,2)\n",
       3,
       "{}:1: @compare expects 1 (equal) or 0 (different) as third argument\n",
       {}},
      {"a slot of one digit",
       "",
       "@setslot(1)\n",
       3,
       "{}:1: a slot is two hexadecimal digits, such as 00 or 0C, not \"1\"\n",
       {}},
  };
  ExpectRows(rows);
  for (const Row& row : rows) {
    const Folder folder;
    const std::string script = folder.Write("script.orv", row.script);
    EXPECT_EQ(RunOrvane(folder, "run " + script).out.find(">>"), std::string::npos) << row.name;
  }
}

TEST(Run, ChecksTheWholeScriptBeforeItsFirstLine) {
  const std::pair<std::string, std::string> rows[] = {
      {"00A4 @nosuch(1)", "unknown command @nosuch"},
      {"@strlen", "@strlen has no \"(\" behind it"},
      {"(00A40000", "a statement can't begin with \"(\""},
  };
  for (const auto& [line, message] : rows) {
    const Folder folder;
    const std::string script = folder.Write("script.orv", kSelect + line + "\n");
    const Outcome outcome = RunOrvane(folder, "run " + script);
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(outcome.err, script + ":2: " + message + "\n");
    EXPECT_EQ(outcome.out, "");
  }
}

TEST(Run, HidesSecretsEverywhere) {
  const std::string script = "%MYPIN = 2412\n%CODE = 34FF\n" + kSelect +
                             "00 20 00 80 08 24 12 34 FF FF FF FF FF\n"
                             "0020 0080 08 %MYPIN %CODE FFFFFFFF\n%COPY = %CODE\n"
                             "00D6 8500 02 %COPY\n@compare(%MYPIN,2412,1)\n";
  const std::string odd = "0020008008 241234F\n";
  const auto shows = [](const Outcome& outcome) {
    const std::string all = outcome.out + outcome.err;
    return all.find("12 34") != all.npos || all.find("1234") != all.npos ||
           all.find("2412") != all.npos || all.find("34FF") != all.npos ||
           all.find("34 FF") != all.npos;
  };
  const Folder folder;
  const std::string file = folder.Write("script.orv", script + odd);
  const Outcome run = RunOrvane(folder, "run " + file);
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_FALSE(shows(run)) << run.out << run.err;
  ExpectInOrder(run.out, {"%MYPIN = **\n", "%CODE = **\n", "00 20 00 80 08 **\n",
                          ">>   00 20 00 80  08  ** (8 bytes)   VERIFY\n", "SW   9000",
                          "0020 0080 08 %MYPIN %CODE **\n", "%COPY = %CODE\n", "=    **\n",
                          ">>   00 D6 85 00  02  ** (2 bytes)   UPDATE BINARY\n",
                          "@compare(%MYPIN,**,**)\n", "ok   ** = **\n"});

  const std::string typed =
      "%MYPIN = 2412\n%MYPIN\n" + kSelect + "00 20 00 80 08 24 12 34 FF FF FF FF FF\n" + odd;
  const Outcome shell = RunOrvane(folder, "shell", typed);
  EXPECT_FALSE(shows(shell)) << shell.out << shell.err;
  ExpectInOrder(shell.out, {"%MYPIN = **", "=    **", "00 20 00 80 08 **", "SW   9000"});

  EXPECT_FALSE(shows(RunOrvane(folder, "apdu 002000800824123456FFFFFFFF")));
  EXPECT_TRUE(shows(RunOrvane(folder, "run --show-secrets " + file)));
}

TEST(Run, ReportsReaderTrouble) {
  ExpectRows({
      {"an unknown reader",
       "--simulate -r Nowhere",
       "",
       4,
       "orvane: can't open the reader Nowhere (PC/SC); there is: Simulated Reader 0, Simulated "
       "Reader 1\n",
       {}},
      {"an unknown kind", "-r 9:1", "", 4, "orvane: there is no reader kind 9\n", {}},
      {"an unknown reader of a script",
       "--simulate",
       "@OPENREADER(5:9)\n",
       4,
       "{}:1: can't open the reader port 9 (D8)\n",
       {}},
      {"a reader without a card",
       "-r 'Simulated Reader 1'",
       "@reset()\n",
       4,
       "{}:1: no answer to reset: is a card in the reader?\n",
       {}},
      {"a command without a card",
       "-r 'Simulated Reader 1'",
       "00A40000\n",
       4,
       "{}:1: no answer from the card or its reader\n",
       {}},
      {"a reader number that is not open",
       "-r 'Simulated Reader 0'",
       "@setreader(1)\n00A40000\n",
       4,
       "{}:2: reader 1 is not open: open it with @OPENREADER(...)\n",
       {}},
      {"a reader number that does not exist",
       "",
       "@setreader(16)\n",
       4,
       "{}:1: there is no reader number \"16\": they run from 0 to 15\n",
       {}},
  });
}

TEST(Run, ReportsWhatItCannotRead) {
  const Folder folder;
  const Outcome missing = RunOrvane(folder, "run " + folder.Path("none.orv"));
  EXPECT_EQ(missing.exitCode, 5);
  EXPECT_EQ(missing.err, "orvane: can't open " + folder.Path("none.orv") + "\n");
  EXPECT_EQ(RunOrvane(folder, "run").exitCode, 2);
  EXPECT_EQ(RunOrvane(folder, "run -D 1 x").exitCode, 2);
  EXPECT_EQ(RunOrvane(folder, "run -k 9 x").exitCode, 2);
  EXPECT_EQ(RunOrvane(folder, "--help").exitCode, 0);

  const Outcome piped = RunOrvane(folder, "run -", "%A = 1\n@compare(%A,2,1)\n");
  EXPECT_EQ(piped.exitCode, 1);
  EXPECT_EQ(piped.err.substr(0, 10), "<stdin>:2:");
}

TEST(Shell, ShowsValuesAndGoesOnAfterFailures) {
  const Folder folder;
  const Outcome outcome = RunOrvane(folder, "shell",
                                    "%ATRLIKE = 00A40000023F00\n%ATRLIKE\n%U\n@strlen(ab)\n"
                                    "@compare(1,2,1)\nsend %ATRLIKE\n%SW\nquit\n00A40000\n");
  EXPECT_EQ(outcome.exitCode, 0);
  ExpectInOrder(outcome.out, {"%ATRLIKE\n      =    00A40000023F00\n", "=    2\n", "FAIL", ">>",
                              "SW   9000", "=    9000\n"});
  EXPECT_EQ(outcome.out.find(">>"), outcome.out.rfind(">>"));
  ExpectInOrder(outcome.err, {"orvane: undefined variable %U\n", "orvane: not as expected"});
}

TEST(Apdu, SendsEachArgumentOrNothing) {
  const Folder folder;
  const Outcome sent = RunOrvane(folder, "apdu '00 A4 00 00 02 3F 00' 00b2010400");
  EXPECT_EQ(sent.exitCode, 0) << sent.err;
  ExpectInOrder(sent.out, {"ATR", "02  3F 00   SELECT", "SW", "READ RECORD", "SW"});
  const Outcome refused = RunOrvane(folder, "apdu 00A40000023F00 00A4000");
  EXPECT_EQ(refused.exitCode, 3);
  EXPECT_EQ(refused.out, "");
}

TEST(ReaderList, NamesReadersAsTheyAreOpened) {
  const Folder folder;
  const Outcome listed = RunOrvane(folder, "readers --simulate --kind 3");
  EXPECT_EQ(listed.out,
            "PC/SC                       3:Simulated Reader 0\n"
            "PC/SC                       3:Simulated Reader 1\n");
  const Outcome ports = RunOrvane(folder, "readers --kind 5 --ports 2");
  ExpectInOrder(ports.out, {"5:COM1\n", "5:COM2\n", "5:COM100(D8USB)\n"});
}

}  // namespace
}  // namespace host_test
