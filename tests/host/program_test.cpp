#include <gtest/gtest.h>

#include <chrono>
#include <sstream>
#include <thread>
#include <vector>

#include "host/run_program.h"
#include "simulators/encryption_machine.h"

namespace host_test {
namespace {

// Selects the payment application of the virtual card.
const std::string kSelect = "00 A4 04 00 08 F04F5256414E4501\n";
const std::string kWorks = "00A40000023F00\n@compare(%SW,9000,1)\n";
const std::string kOpened = "reader Simulated Reader 0 (PC/SC)|1 expectation";

// A run of the file `script`.
struct Row {
  std::string options;
  std::string script;
  int exitCode;
  std::string err;  // the whole standard error
  std::string out;  // what standard output shows, in this order, with | between
};

class Program : public testing::Test {
 protected:
  static void ExpectRows(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
      SCOPED_TRACE(row.options + '\n' + row.script);
      WriteFile("script", row.script);
      const Outcome outcome = RunOrvane("run --simulate " + row.options + " script");
      EXPECT_EQ(outcome.exitCode, row.exitCode) << outcome.out;
      EXPECT_EQ(outcome.err, row.err);
      ExpectInOrder(outcome.out, row.out);
      // Whatever is wrong, the statement's command must not have gone to the card.
      EXPECT_FALSE(row.exitCode == 3 && Shows(outcome.out, ">>")) << outcome.out;
    }
  }

  WorkingFolder folder;
};

TEST_F(Program, CarriesOutAScript) {
  const std::string script =
      "; a comment\n$ Select it\n@reset()\n" + kSelect +
      "@compare(%SW,9000,1)\n%FIRST = @strmidh(%RESP,0,1)\n@compare(%FIRST,6F,1)\n"
      "@compare(@strmidh(%ATR,0,1),3B,1)\n";
  ExpectRows({
      {"", script, 0, "",
       "\nSelect it\n|   3  @reset()\n|ATR  3B 6A 00 00|   4  00 A4 04 00 08|"
       ">>   00 A4 04 00  08  F0 4F 52 56 41 4E 45 01   SELECT\n|<<   6F 29 84 08|"
       "SW   9000  success\n|   6  %FIRST = @strmidh(%RESP,0,1)\n|=    6F\n|ok   6F = 6F\n|"
       "done  1 command sent, 3 expectations met\n"},
      {"", "00A40000021234\n@compare(%SW,6A82,1)\n@compare(%RESP 00,00,1)\n", 0, "",
       "SW   6A82  file or application not found\n|2 expectations met\n"},
      {"", "%A = 1\n@stop()\n@compare(1,2,1)\n", 0, "", "@stop()|done"},
      {"", "\xEF\xBB\xBF; first\r\n%A = 12\r\n@compare(%A,12,1)", 0, "", "ok   12 = 12\n"},
      {"-D %CMD=00A4000002 -D ID=\"3F 00\"", "%CMD %ID\n@compare(%SW,9000,1)\n", 0, "",
       "02  3F 00   SELECT|1 expectation met"},
      {"",
       "$ M\xC3\xBCller\xE4 \xC2\x9B \xE2\x80\xAE \x1B\x7F \xC0\xAF \xED\xA0\x80 \xF4\x90\x80\x80 "
       "\xE2\x82\n",
       0, "",
       "M\xC3\xBCller\\xE4 \\xC2\\x9B \\xE2\\x80\\xAE \\x1B\\x7F \\xC0\\xAF \\xED\\xA0\\x80 "
       "\\xF4\\x90\\x80\\x80 "
       "\\xE2\\x82\n"},
      {"-q", "$ Title\n00A40000023F00\n", 0, "", ""},
      {"--color always", "00A40000021234\n", 0, "", "\x1b[31m6A82\x1b[0m"},
      {"--color always -k pcsc", "@compare(1,2,1)\n", 1,
       "script:1: not as expected: @compare(1,2,1)\n  left   1\n  right  2\n"
       "  they should be equal\n",
       "\x1b[1;37;41mFAIL |\x1b[1;37;41m1 is not 2|mfailed\x1b[0m  0 commands sent"},
  });
}

// The library hands over 511 characters at a time.
TEST_F(Program, SendsLongCommands) {
  const std::string half = "%A = " + std::string(2 * 2044, 'a') + "\n";
  const std::string data(2 * 255, 'B');
  ExpectRows({
      {"", "00D60000FF" + data + "\n@compare(%SW,6986,1)\n", 0, "", ">>   00 D6 00 00  FF|6986"},
      {"-r 5:COM1", "00D60000FF" + data + "\n", 3,
       "script:1: the command has 260 bytes, and readers of the kind D8 take 255 at most\n", ""},
      {"", half + "00D6000000 0FF9 %A %A 0A\n@compare(%SW,6700,1)\n@compare(%A 1,%A 2,0)\n", 0, "",
       ">>   00 D6 00 00  00 0F F9|AA AA AA AA|a2\n"},
  });
}

TEST_F(Program, OpensReadersByNameHoweverBlanksStand) {
  ExpectRows({
      {"", "@OPENREADER(Simulated Reader 0)\n" + kWorks, 0, "", kOpened},
      {"-D R=\"Simulated Reader 0\"", "@OPENREADER(%R)\n" + kWorks, 0, "", kOpened},
      {"",
       "@OPENREADER(Simulated Reader 1)\n@setreader(15)\n@OPENREADER(Simulated Reader 0)\n" +
           kWorks,
       0, "", kOpened},
      {"", "@setslot(01)\n" + kWorks, 0, "", "1 expectation met"},
  });
}

TEST_F(Program, StopsAtAnExpectationThatDoesNotHold) {
  ExpectRows({
      {"", "%A = 6a82\n@compare(%A,9000,1) ; why\n00A40000\n", 1,
       "script:2: not as expected: @compare(%A,9000,1) ; why\n  left   6a82\n  right  9000\n"
       "  they should be equal\n",
       "FAIL 6a82 is not 9000\n"},
      {"", "@compare(AB,AB,0)\n", 1,
       "script:1: not as expected: @compare(AB,AB,0)\n  left   AB\n  right  AB\n"
       "  they should differ\n",
       "FAIL AB = AB\n"},
      {"", "%PIN = 4711\n@compare(%PIN,4712,1)\n", 1,
       "script:2: not as expected: @compare(%PIN,**,1)\n  left   **\n  right  **\n"
       "  they should be equal\n",
       "FAIL ** is not **\n"},
  });
}

TEST_F(Program, HoldsTheCardToWhatStandsBelowACommand) {
  const std::string unable = "an expectation stands below the command that it is about\n";
  const std::string behind = "an expectation needs a line of its own, below the command\n  ";
  ExpectRows({
      {"", "%A = 3f\n00A40000\n; a comment\n\n;expect 6f .. 83 02 %A 00 9000\n; expect 9000\n", 0,
       "", "   5  ;expect 6f .. 83 02 %A 00 9000\n      ok   as expected\n|2 expectations met\n"},
      {"", "00A40000021234\n; expect 9000 or 63CX\n00840000\n", 1,
       "script:2: not as expected: ; expect 9000 or 63CX\n  expected  90 00\n"
       "  came      6A 82   file or application not found\n            ^^ ^^\n",
       "FAIL not as expected\n\nfailed  1 command"},
      {"", "%PIN = 31\n00A40000\n; expect %PIN 07 9000\n", 1,
       "script:3: not as expected: ; expect %PIN **\n"
       "  where they part is a secret, and shown with --show-secrets\n",
       "; expect %PIN **\n"},
      {"", "; expect 9000\n00A40000\n", 3, "script:1: " + unable, ""},
      {"", "00A40000\n%A = 1\n; expect 9000\n", 3, "script:3: " + unable, ""},
      {"", "00A40000\n@compare(1,1,1) ; expect 9000\n", 3,
       "script:2: " + behind + "@compare(1,1,1) ; expect 9000\n                  ^\n", ""},
      {"", "%A = 00A40000;expect 9000\n", 3,
       "script:1: " + behind + "%A = 00A40000;expect 9000\n               ^\n", ""},
      {"-q", "00A40000\n; expect %U 9000\n", 3, "script:2: undefined variable %U\n", ""},
  });
}

TEST_F(Program, SendsNothingOfAStatementThatIsWrong) {
  const std::string undefined = "script:1: undefined variable %U\n";
  const std::string longPart = "%A = " + std::string(4096, '0') + "\n";
  ExpectRows({
      {"", "\t%U\t\n", 3, undefined, ""},
      {"", "00A4000002 @strmid(3F00%U %U,0,4)\n", 3, undefined, ""},
      {"", "%\x1B[2J\n", 3, "script:1: undefined variable %\\x1B[2J\n", ""},
      {"", "%A = @xor(00,%U)\n", 3, undefined, ""},
      {"", "@OPENREADER(%U)\n", 3, undefined, ""},
      {"", "00A40000 0\n", 3, "script:1: the command has an odd number of digits (9)\n", ""},
      {"", "00A4000002 3FOO\n", 3,
       "script:1: the command has no hexadecimal digit at column 14\n  00A4000002 3FOO\n"
       "               ^\n",
       ""},
      {"", "%A = 00A400\n%A\n", 3, "script:2: the command has 3 bytes, its header alone needs 4\n",
       ""},
      {"", "%A = @strmid(00,2,1)\n%A\n", 3, "script:2: the command is empty\n", ""},
      {"", longPart + "%A %A 00\n", 3,
       "script:2: the command has 4097 bytes, more than the 4096 that can be sent\n", ""},
      {"", longPart + "@OPENREADER(%A)\n", 3,
       "script:2: the argument has more than 511 characters, the most that a command can hand over "
       "to its host\n",
       ""},
      {"", "00D6000008 @SUBKEY(0011,1122334455667788)\n", 3,
       "script:1: the key of @SUBKEY has 2 octets; it takes 8, 16 or 24\n", ""},
      {"", "@setslot(1)\n", 3, "script:1: a slot is two hexadecimal digits, such as 00 or 0C\n",
       ""},
      // The whole script is checked before its first line.
      {"", kSelect + "00A4 @nosuch(1)\n", 3, "script:2: unknown command @nosuch\n", ""},
  });
}

TEST_F(Program, RefusesWhatNobodyMeans) {
  const std::string k = "%K = 0123456789ABCDEF\n";
  const auto octets = [](size_t count) { return std::string(2 * count, 'A'); };
  const struct {
    std::string script, err;  // what stands behind the line's number
    std::string options = "-q";
  } rows[] = {
      {"%X = @des( 0123456789ABCDEO, 11, 1)\n",
       "the key of @des has no hexadecimal digit at column 27\n"
       "  %X = @des( ****************, **, *)\n                            ^\n"},
      {"%C = 01O345\n%X = @des(00 %C,11,1)\n",
       "the key of @des has no hexadecimal digit at character 3 of %C\n"},
      {k + "%X = @mac(%K,11%K,00,0)\n",
       "the data of @mac has no hexadecimal digit at column 16; a variable needs a blank before "
       "it\n  %X = @mac(%K,****,**,*)\n                 ^\n"},
      {"%X = @xor(0x12,FF)\n",
       "the data of @xor has no hexadecimal digit at column 12; there is no 0x\n"
       "  %X = @xor(0x12,FF)\n             ^\n"},
      {"%X = @xor(%V,FFFF)\n",
       "the data of @xor has no hexadecimal digit at character 3 of %V; a blank in a value counts "
       "as a digit here\n",
       "-q -D V=\"3F 00\""},
      {"%X = @xor(112,FF)\n", "the data of @xor has an odd number of digits (3)\n"},
      {"%X = @xor(11,%E)\n", "the mask of @xor is empty\n", "-q -D E="},
      {"%X = @strmid(AB,0A,1)\n", "the start of @strmid is no decimal number, but \"0A\"\n"},
      {"@compare(1,1,01)\n", "the expected of @compare is neither 0 nor 1, but \"01\"\n"},
      {k + "%X = @des(%K,00,@strmid(01,0,2))\n", "the flag of @des is neither 0 nor 1\n"},
      {k + "%X = @des(%K," + octets(257) + ",1)\n",
       "the data of @des has 257 octets; the most is 256\n"},
      {k + "%X = @descbc(%K," + octets(256) + "," + octets(17) + ",1)\n",
       "the iv of @descbc has 17 octets; the most is 16\n"},
      {"%X = @HASH(" + octets(4097) + ")\n",
       "the hex of @HASH has 4097 octets; the most is 4096\n"},
      {"%X = @RSAPUBENC(FF,3,100)\n",
       "@RSAPUBENC: its data has 3 digits, its modulus 2; data can't be longer\n"},
      {"%X = @RSAPUBENC(FF,3,ff)\n",
       "@RSAPUBENC failed: its data is no smaller number than its modulus (the library: "
       "RSA\u52A0\u5BC6\u5931\u8D25)\n"},
      {"00A4;\n",
       "the command has no hexadecimal digit at column 5; a comment needs a line of its own\n"
       "  00A4;\n      ^\n"},
      {"@openreader(\"Simulated Reader 0\")\n",
       "the reader of @openreader has quotes: there are none here\n"},
      {k + "%K%K\n", "undefined variable %K%K; a variable needs a blank before it\n"},
  };
  for (const auto& row : rows) {
    const size_t line = row.script.find('\n') + 1 == row.script.size() ? 1 : 2;
    ExpectRows(
        {{row.options, row.script, 3, "script:" + std::to_string(line) + ": " + row.err, ""}});
  }
  // What no look ahead can know is judged where it runs, with the library's own message.
  EXPECT_EQ(RunOrvane("shell -D E=1G", "%X = @HASH(%E)\n").err,
            "orvane: "
            "the hex of @HASH has no hexadecimal digit at character 2 of %E (the library: "
            "\u7B2C2\u4E2A\u5B57\u7B26\u4E0D\u662F16\u8FDB\u5236\u5B57\u7B26\uFF0C"
            "\u8BF7\u68C0\u67E5\uFF01)\n  1G\n   ^\n");
  // The literals of a whole script are looked at before its first line.
  ExpectRows({{"", kSelect + "@compare(1,1,2)\n", 3,
               "script:2: the expected of @compare is neither 0 nor 1, but \"2\"\n", ""},
              {"",
               "%A = @strmid(3AB, +1 , 5)\n@compare(%A,AB,1)\n%X = @RSAPUBENC(0CA1,3,041)\n"
               "%A = @strlenh(@strmidh(%A,5,1))\n",
               0, "", ""}});
}

TEST_F(Program, ReportsReaderTrouble) {
  const std::string empty = "-r \"Simulated Reader 1\"";
  ExpectRows({
      {"-r Nowhere", "", 4,
       "orvane: can't open the reader Nowhere (PC/SC): no reader has this name; there is: port 1 "
       "Simulated Reader 0, port 2 Simulated Reader 1\n",
       ""},
      {"", "@OPENREADER(5:9)\n", 4,
       "script:1: can't open the reader port 9 (D8): its maker's library finds no reader there\n",
       ""},
      {empty, "@reset()\n", 4, "script:1: no answer to reset: no card is in the reader\n", ""},
      {empty, "00A40000\n", 4,
       "script:1: no answer from the card or its reader: no card is in the reader\n", ""},
      {"-r \"Simulated Reader 0\"", "@setreader(1)\n00A40000\n", 4,
       "script:2: reader 1 is not open: open it with @OPENREADER(...)\n", ""},
      {"", "@setreader(16)\n", 4,
       "script:1: there is no reader number \"16\": they run from 0 to 15\n", ""},
  });
}

TEST_F(Program, CarriesOutTheExampleWithKeys) {
  const Outcome outcome =
      RunOrvane("run --simulate '" ORVANE_SOURCE_FOLDER "/examples/authenticate.orv'");
  EXPECT_EQ(outcome.exitCode, 0) << outcome.out << outcome.err;
  // A master key, and the key that is derived from it.
  for (const char* secret : {"4041424344454647", "0B96FA2D051A6E0B"}) {
    EXPECT_FALSE(Shows(outcome.out, secret)) << outcome.out;
  }
}

TEST_F(Program, TakesVariablesFromOutside) {
  WriteFile("vars", "\xEF\xBB\xBF; mine\r\n\nCMD=00A4000002\r\n%id= 3F 00\n");
  WriteFile("wrong", "A=1\nPIN 4711\n");
  ExpectRows({
      {"--vars vars -D ID=3F00", "%CMD %ID\n@compare(%SW,9000,1)\n@compare(%ID,3F00,1)\n", 0, "",
       "02  3F 00   SELECT|2 expectations met"},
      {"--vars vars --env PATH", "@compare(@strlen(%PATH),0,0)\n%A = ~ %ID\n", 0, "",
       "=    ~ 3F 00\n"},
      {"--vars wrong", "", 3,
       "wrong:2: it takes NAME=VALUE, NAME without blanks, parentheses and commas\n", ""},
      {"--vars none", "", 5, "orvane: can't open none: No such file or directory\n", ""},
      {"--env ORVANE_HAS_NONE", "", 2, "orvane: the environment has no ORVANE_HAS_NONE\n", ""},
  });
  EXPECT_EQ(RunOrvane("shell --vars -", "A=1\n").exitCode, 2);
}

TEST_F(Program, ReportsWhatItCannotRead) {
  const Outcome missing = RunOrvane("run none.orv");
  EXPECT_EQ(missing.exitCode, 5);
  EXPECT_EQ(missing.err, "orvane: can't open none.orv: No such file or directory\n");
  for (const char* arguments : {"run", "run -D 1 x", "run -k 9 x", "run x '\x1B[2J'"}) {
    const Outcome outcome = RunOrvane(arguments);
    EXPECT_EQ(outcome.exitCode, 2) << arguments;
    EXPECT_FALSE(Shows(outcome.err, "\x1B")) << outcome.err;
  }
  EXPECT_EQ(RunOrvane("rnu x").err, "orvane: there is no command rnu\nTry: orvane --help\n");
  EXPECT_TRUE(Shows(RunOrvane("run 'a\nb'").err, "a\\x0Ab"));
  EXPECT_EQ(RunOrvane("--help").exitCode, 0);
  const Outcome piped = RunOrvane("run -", "%A = 1\n@compare(%A,2,1)\n");
  EXPECT_EQ(piped.exitCode, 1);
  EXPECT_EQ(piped.err.substr(0, 10), "<stdin>:2:");
}

TEST_F(Program, NoticesWhatCannotBeReadOrWritten) {
  WriteFile("script", "%A = 1\n");
  for (const std::string command :
       {"run script", "--help", "readers --simulate", "apdu --simulate 00A40000", "tlv 5A0141",
        "tags import '" ORVANE_SOURCE_FOLDER "/examples/tags.txt'", "tags list", "tags find 4F"}) {
    const bool fills = std::filesystem::exists("/dev/full") && !command.starts_with("run");
    const Outcome outcome = RunOrvane(command + (fills ? " >/dev/full" : " >&-"));
    EXPECT_EQ(outcome.exitCode, 5) << command;
    EXPECT_TRUE(Shows(outcome.err, "can't write standard output: ")) << outcome.err;
  }
  EXPECT_EQ(RunOrvane("run -q script >&-").exitCode, 0);  // which has nothing to say
  const std::string folder = std::filesystem::exists("/dev/full") ? " </" : " <&-";
  for (const std::string command : {"run - <&-", "tlv", "shell", "tags import - <&-"}) {
    const Outcome outcome = RunOrvane(command.ends_with("&-") ? command : command + folder);
    EXPECT_EQ(outcome.exitCode, 5) << command;
    EXPECT_TRUE(outcome.err.starts_with("orvane: can't read <stdin>: ")) << outcome.err;
  }
}

// What is opened first never gets the number of standard error.
TEST_F(Program, SendsNothingButCommandsWhereItsOutputIsClosed) {
  simulator::EncryptionMachine machine;
  WriteFile("script", "30 31\n@compare(1,2,1)\n");
  EXPECT_EQ(RunOrvane("run -q -r 10:" + machine.Name() + " script 2>&-").exitCode, 1);
  // The machine notes the end on a thread of its own.
  for (int tries = 0; tries < 500 && !machine.Journal().ends_with("closes\n"); ++tries)
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  EXPECT_EQ(machine.Journal(), "1 opens\n1 sends 3031\n1 closes\n");
}

// Octet 1A is no end, and no zero byte is text.
TEST_F(Program, ReadsTextAsEditorsStoreIt) {
  const std::string text = "%A = \xC3\xBC\xF0\x9F\x98\x80\r\n@compare(@strlen(%A),6,1)\n";
  const auto utf16 = [](const std::u16string& units, bool big) {
    std::string octets;
    for (const char16_t unit : u"\uFEFF" + units) {
      octets += static_cast<char>(big ? unit >> 8 : unit);
      octets += static_cast<char>(big ? unit : unit >> 8);
    }
    return octets;
  };
  const std::u16string units = u"%A = \u00FC\U0001F600\r\n@compare(@strlen(%A),6,1)\n";
  const std::string little = utf16(units, false);
  for (const auto& [input, code] :
       std::vector<std::pair<std::string, int>>{{text, 0},
                                                {"\xEF\xBB\xBF" + text, 0},
                                                {little, 0},
                                                {utf16(units, true), 0},
                                                {text + "; \x1A\n@compare(1,2,1)\n", 1},
                                                {little.substr(2), 5},
                                                {little.substr(0, little.size() - 1), 5},
                                                {utf16(u"\xD800 ", false), 5}}) {
    for (const char* command : {"run -", "run in", "shell"}) {
      const Outcome outcome = RunOrvane(command, input);
      EXPECT_EQ(outcome.exitCode, code) << command << input << outcome.out << outcome.err;
      EXPECT_EQ(Shows(outcome.out, "6 = 6"), code < 5) << outcome.out;
    }
  }
  EXPECT_EQ(RunOrvane("tlv", utf16(u"5A 01 41", false)).exitCode, 0);
}

TEST_F(Program, TakesAnyLettersOnItsCommandLine) {
  const std::filesystem::path folder =
      u8"bau \u00F6 (1)/\u041F\u0440\u043E\u0435\u043A\u0442 \u4E2D\u6587";
  std::filesystem::create_directories(folder);
  WriteFile(folder / u8"\u03A9.orv", "@compare(@strlen(%A),4,1)\n@compare(%A,\u00FC\u03A9,1)\n");
  const Outcome outcome = RunOrvane(
      "run -D \"A=\u00FC\u03A9\" \"bau \u00F6 (1)/\u041F\u0440\u043E\u0435\u043A\u0442 "
      "\u4E2D\u6587/\u03A9.orv\"");
  EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
  EXPECT_TRUE(Shows(outcome.out, "\u00FC\u03A9 = \u00FC\u03A9")) << outcome.out;
  EXPECT_EQ(RunOrvane("tags add 4F \"\u00FC\u03A9\"").exitCode, 0);
  const Outcome found = RunOrvane("tags find 4f");
  EXPECT_TRUE(Shows(found.out, "\u00FC\u03A9")) << found.out << found.err;
  EXPECT_EQ(RunOrvane("run /kg").exitCode, 5);  // no option, but a file that is not there
}

TEST_F(Program, ShowsValuesAndGoesOnAfterFailuresInTheShell) {
  const Outcome outcome = RunOrvane("shell --simulate",
                                    "%ATRLIKE = 00A40000023F00\n%ATRLIKE\n%U\n@strlen(ab)\n"
                                    "@compare(1,2,1)\nsend %ATRLIKE\n%SW\n; expect 9000\n"
                                    "%A = 1\n; expect 9000\nquit\n00A40000\n");
  EXPECT_EQ(outcome.exitCode, 3);  // of the first failure
  ExpectInOrder(outcome.out,
                "%ATRLIKE\n      =    00A40000023F00\n|=    2\n|FAIL|>>|SW   9000|=    9000\n");
  EXPECT_EQ(outcome.out.find(">>"), outcome.out.rfind(">>"));
  ExpectInOrder(outcome.err,
                "orvane: undefined variable %U\n|orvane: not as expected|orvane: an expectation "
                "stands below");
}

TEST_F(Program, SendsEachArgumentOrNothing) {
  const Outcome sent = RunOrvane("apdu --simulate \"00 A4 00 00 02 3F 00\" 00b2010400");
  EXPECT_EQ(sent.exitCode, 0) << sent.err;
  ExpectInOrder(sent.out, "ATR|02  3F 00   SELECT|SW|READ RECORD|SW");
  const Outcome piped =
      RunOrvane("apdu --simulate 00A40000 -", "00 20 0080 03 244711\r\n\n00840000");
  ExpectInOrder(piped.out, "SELECT|03  ** (3 bytes)   VERIFY|GET CHALLENGE");
  const std::pair<std::string, std::string> rows[] = {
      {"00A40000023F00 00A4000", ""}, {"[00A40000]", ""}, {"-", "\n"}, {"-", "00A40000\n00A4\n"}};
  EXPECT_EQ(RunOrvane("apdu --simulate --expect \"61XX or 9x00\" 00A40000").exitCode, 0);
  EXPECT_EQ(RunOrvane("apdu --simulate --expect 61xx 00A40000").exitCode, 1);
  EXPECT_EQ(RunOrvane("apdu --simulate --expect 900 00A40000").exitCode, 2);
  for (const auto& [arguments, input] : rows) {
    const Outcome refused = RunOrvane("apdu --simulate " + arguments, input);
    EXPECT_EQ(refused.exitCode, 3) << arguments;
    EXPECT_EQ(refused.out, "") << arguments;
  }
}

TEST_F(Program, ListsReadersAsTheyAreOpened) {
  ExpectInOrder(
      RunOrvane("readers --simulate --kind 3").out,
      "PC/SC                       3:Simulated Reader 0\n|"
      "PC/SC                       3:Simulated Reader 1\n|libraries\n|winscard|simulators");
  ExpectInOrder(RunOrvane("readers --kind 5 --ports 2").out, "5:COM1\n|5:COM2\n|5:COM100(D8USB)\n");
  ExpectInOrder(RunOrvane("readers --simulate").out,
                " 1:USB1  listed as USB0\n| 1:USB2  listed as USB1\n| 12:BSIT:1\n| "
                "12:BSIT:2\n|libraries\n|TY USB token|simulators|D8 "
                "|dcrf32|simulators|S5009, reset gives the ATS|S5009|simulators");
  ExpectInOrder(RunOrvane("--version").out,
                "orvane |\n\ncryptography |orvane_crypto|orvane_crypto|\nPC/SC |winscard|\nBSIT "
                "|not found\n");
  const Outcome without = RunOrvane("readers -k S5009");
  ExpectInOrder(without.out, "no readers found; |\nS5009 |S5009|not found\n");
  EXPECT_EQ(without.exitCode, 0);
}

}  // namespace
}  // namespace host_test
