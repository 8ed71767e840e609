#include <gtest/gtest.h>

#include "host/run_program.h"

namespace host_test {
namespace {

const std::string kKey = "%K = 0123456789ABCDEF\n";

// Each line of the output begins with "script:".
struct Row {
  std::string script;
  std::string found;
  std::string options = "";
};

void ExpectRows(const std::vector<Row>& rows) {
  for (const Row& row : rows) {
    SCOPED_TRACE(row.options + '\n' + row.script);
    WriteFile("script", row.script);
    const Outcome outcome = RunOrvane("check script " + row.options);
    std::string found = outcome.out;
    for (size_t at = 0; (at = found.find("script:", at)) != found.npos;) found.erase(at, 7);
    EXPECT_EQ(found, row.found);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.exitCode, Shows(row.found, " error: ") ? 3 : row.found.empty() ? 0 : 1);
  }
}

TEST(Check, FindsWhatIsWrong) {
  const WorkingFolder folder;
  const std::string none = " has no hexadecimal digit at ";
  ExpectRows({
      // All of a script, and in a line all its operands; a variable is missed once.
      {"00A4 %U %V\n%RESP\n  @nosuch(1)\n%U\n@compare(%ATR,1,0)\n",
       "1:6: error: undefined variable %U\n1:9: error: undefined variable %V\n"
       "3:3: error: unknown command @nosuch\n"},
      {"%RESP\n%B = 00A4%C\n",
       "1:1: error: undefined variable %RESP\n"
       "2:1: warning: nothing reads this value of %B\n"},
      {"@reset()\n00A40000\n@compare(%ATR,%RESP %SW,0)\n%d\n", "", "-D D=00A40000"},
      {"%\xC3\xBC = 1\n@compare(%\xC3\xBC\t, %U, 0)\n", "2:15: error: undefined variable %U\n"},
      {"@compare(@asc2hex(\"%A\"), @strlen(B%A), 0)\n",
       "1:19: warning: the text of @asc2hex has quotes: there are none here\n"
       "1:34: warning: the text of @strlen has a % in a word; a variable needs a blank before it\n",
       "-D A=1"},
      {"%A = @strlen(1\n@compare(%A,1,1)\n@stop() 00\n",
       "1:6: error: @strlen is not closed with \")\"\n"
       "3:9: error: only a comment can stand behind @stop(...)\n"},
      // Where no run gets any further: these end with the code of readers.
      {"@OPENREADER(9:COM1)\n@setreader(16)\n@setreader(15)\n@OPENREADER(5:)\n",
       "1:1: warning: there is no reader kind 9; there are: 1 tyusb, 2 tycom, 3 pcsc, 4 wd, 5 d8, "
       "6 fm8201, 7 s5009, 8 s5009ats, 10 tcp, 11 icr, 12 bsit\n"
       "2:1: warning: there is no reader number \"16\": they run from 0 to 15\n"
       "4:1: warning: the reader's name is empty\n"},
      // What values hold, through whatever is made of them.
      {"%X = 01O3\n%Y = %X\n00A40000 02 %Y\n",
       "3:13: error: the command" + none + "character 3 of %Y\n"},
      {"%V = @xor(0102,%X)\n@compare(%V,%V,1)\n",
       "1:16: error: the mask of @xor has an odd number "
       "of digits (3)\n",
       "-D X=123"},
      {"%L = @strlenh(@ASC2HEX(abcdefghi))\n@compare(%L,9,1)\n"
       "%M = @mac(@strmidh(0011223344556677889900,0,%L),00,00,0)\n@compare(%M,0,0)\n",
       "3:11: error: the key of @mac has 9 octets; it takes 8, 16 or 24\n"},
      {"00A40000\n%M = @des(@strmidh(%RESP,2,4),00,1)\n@compare(%M,0,0)\n",
       "2:11: error: the key of @des has 4 octets at most; it takes 8, 16 or 24\n"},
      {kKey + "%M = @descbc(%K,00,@xor(@HEX2ASC(4142),0011223344556677889900112233445566),2)\n"
              "@compare(%M,0,0)\n",
       "2:20: error: the iv of @descbc has 17 octets; the most is 16\n"
       "2:76: error: the flag of @descbc is neither 0 nor 1\n"},
      {"%M = @RSAPUBENC(FF,3,%D)\n@compare(%M,0,0)\n",
       "1:6: error: @RSAPUBENC: its data has 3 digits, its modulus 2; data can't be longer\n",
       "-D D=100"},
      // Another crypto module may give something else.
      {kKey + "%D = @des(@des(%K,00112233445566778899,1),00,1)\n@compare(%D,0,0)\n", ""},
      {kKey + "%D = @des(@HASH(%K),00,1)\n@compare(%D,0,0)\n",
       "2:11: warning: the key of @des has 20 octets; it takes 8, 16 or 24\n"},
      // Commands.
      {"%A = 00A40000 0\n%A\n", "2:1: error: the command has an odd number of digits (9)\n"},
      {"00A40000\n@strmidh(%SW,2,4) 00A4\n00A4 @strmid(%SW,0,3)\n", ""},
      {"%A = @strmid(00,2,1)\n%A\n", "2:1: error: the command is empty\n"},
      {"@OPENREADER(10:1.2.3.4:5)\n30\n@OPENREADER(5:COM1)\n30\n@setreader(1)\n30\n",
       "4:1: error: the command has 1 byte, its header alone needs 4\n"},
      {"%A = " + std::string(510, 'B') + "\n00D60000FF %A\n",
       "2:1: error: the command has 260 bytes, and readers of the kind D8 take 255 at most\n",
       "-r 5:COM1"},
      {"00D6000005 01020304\n%H = 04D68600 14\n" + kKey +
           "00840000\n%H 0011223344 @mac(%K,%H,%RESP,1)\n%H %RESP\n%H %K %K %K %RESP\n"
           "%H %K %K @mac(%K,%H,%RESP,1) 00\n",
       "1:1: warning: Lc says 5 bytes of data, and 4 stand behind it\n"
       "5:1: warning: Lc says 20 bytes of data, and 9 stand behind it\n"
       "7:1: warning: Lc says 20 bytes of data, and at least 24 stand behind it\n"},
      // For the host.
      {"@OPENREADER(" + std::string(512, 'a') + ")\n@setslot(1)\n@setslot(%X)\n",
       "1:1: error: the argument has more than 511 characters, the most that a command can hand "
       "over to its host\n2:1: error: a slot is two hexadecimal digits, such as 00 or 0C\n",
       "-D X=0c"},
      // What nobody means.
      {"00A40000\n@compare(%SW,6a82,1)\n@compare(%SW,6A82,1)\n"
       "@compare(@strmidh(%RESP,1,2),6F102F,1)\n@compare(1,2,1)\n@compare(1,1,0)\n@compare(1,2,0)"
       "\n",
       "2:1: warning: this never holds: the two can't be equal\n"
       "4:1: warning: this never holds: the two can't be equal\n"
       "5:1: warning: this never holds: the two can't be equal\n"
       "6:1: warning: this never holds: the two are always equal\n"},
      {"%A = 1\n%A = 2\n%a = %A\nKEY = 1\n",
       "1:1: warning: nothing reads this value of %A\n3:1: warning: nothing reads this value of "
       "%a\n"
       "4:1: warning: no script can read KEY: its name has no %\n"},
      {"@stop() ; here\n\n$ More\n 00A4%U\n%U\n%X = @xor(1,FF)\n",
       "4:2: warning: nothing runs from here on: @stop() ends the script in line 1\n"
       "4:6: error: the command has no hexadecimal digit at column 6; a variable needs a blank "
       "before "
       "it\n6:11: error: the data of @xor has an odd number of digits (1)\n"},
      {"; expect 9000\n00A40000\n; expect %B 9000 or %O 8000\n; expect 900\n",
       "1:1: error: an expectation stands below the command that it is about\n"
       "3:10: error: undefined variable %B\n"
       "3:10: warning: 8000 is no status word, and never comes: one begins with 6, but not 60, or "
       "with 9\n"
       "3:21: warning: the value of %O is not whole octets in hexadecimal: nothing can be expected "
       "of it\n"
       "4:1: error: an octet has two digits: one is missing before this place\n",
       "-D O=123"},
  });
}

TEST(Check, IsWhatRunDoesFirst) {
  const WorkingFolder folder;
  WriteFile("script", "00A40000\n%U\n%V\n");
  const Outcome run = RunOrvane("run --simulate script");
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err,
            "script:2: undefined variable %U\n  and 1 more error, which orvane check shows\n");
  const Outcome json = RunOrvane("check --format json script -", "\xFF%\xFF = 1\n");
  EXPECT_EQ(json.exitCode, 3);
  EXPECT_TRUE(Shows(json.out,
                    "\"line\": 3,\n    \"column\": 1,\n    \"severity\": \"error\",\n    "
                    "\"text\": \"undefined variable %V\""))
      << json.out;
  EXPECT_EQ(RunOrvane("check none").exitCode, 5);
  for (const char* name : {"authenticate", "exchange", "payment"}) {
    const std::string example = ORVANE_SOURCE_FOLDER "/examples/" + std::string(name);
    EXPECT_EQ(RunOrvane("check '" + example + ".orv'").out, "");
  }
}

}  // namespace
}  // namespace host_test
