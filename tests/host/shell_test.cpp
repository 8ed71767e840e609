#include <gtest/gtest.h>

#include "host/run_program.h"

namespace host_test {
namespace {

struct Row {
  std::string input;
  std::string out;  // what standard output shows, in this order, with | between
  std::string err;  // the whole standard error
  int exitCode = 0;
  std::string options = "";
};

void ExpectRows(const std::vector<Row>& rows) {
  for (const Row& row : rows) {
    SCOPED_TRACE(row.input);
    const Outcome outcome = RunOrvane("shell --simulate " + row.options, row.input);
    EXPECT_EQ(outcome.exitCode, row.exitCode);
    EXPECT_EQ(outcome.err, row.err);
    ExpectInOrder(outcome.out, row.out);
  }
}

TEST(Shell, CarriesOutLinesForTheDesk) {
  const WorkingFolder folder;
  WriteFile("script", "$ Sourced\n%F = 02 3F00\n00A40000 %F\n");
  WriteFile("bad", "%F = 1\n@compare(1,2,1)\n%F = 2\n");
  ExpectRows({
      {"help @DES\nhelp save\nhelp nope\n", "@des(key, data, flag)|:save FILE",
       "orvane: there is no help for nope\n", 2},
      {":nope\n:vars x\n:tlv\n:tlv @stop()\n:decode x 00\n%A = 1\n%A\n", "=    1",
       "orvane: there is no :nope; help lists what there is\norvane: it is :vars\n"
       "orvane: it is :tlv VALUE\norvane: this is no value\n"
       "orvane: there is no kind x; help :decode lists them\n",
       2},
      {":decode sw 6A82\n%T = 8401 @xor(01,02)\n:tlv %T\n:tlv %T 00 FF\n",
       "not found|84  1|03|84  1",
       "orvane: no BER-TLV: the element at byte 5: its tag is cut or has more than 4 octets\n", 3},
      {"%a = 1\n%KEY=22\n@reset()\n:vars\n:decode sw %KEY\n",
       "%A = 1\n|%ATR = 3B6A|%B = 7\n|%KEY = **\n",
       "orvane: the value is a secret, and shown with --show-secrets\n", 3, "-D b=7"},
      {":readers\n00A40000 02 3F00\n", "3:Simulated Reader 1|SW   9000", ""},
      {":source script\n:vars\n:source bad\n%F\n:source none\n",
       "Sourced|   3  00A40000 %F|SW   9000|%F = 023F00|FAIL|=    1",
       "bad:2: not as expected: @compare(1,2,1)\n  left   1\n  right  2\n  they should be equal\n"
       "orvane: can't open none: No such file or directory\n",
       1},
  });
}

TEST(Shell, SavesWhatWasTypedAndRecords) {
  const WorkingFolder folder;
  WriteFile("there", "1");
  ExpectRows({
      {":record log\n%A = 11\n%A\n@compare(1,2,1)\n%S = @xor(00A40000,00000000)\nsend %S\n"
       "00A40000 02 3F00\n; expect 6F .. 9000\n%X = 2431323334FFFFFF\n00200080 08 %X\n"
       "00200080 02 1234\n; expect 6985\n%C = 00200080021234\n00A40000 02 %P\n:save there\n"
       ":save saved\n:record more\n",
       "9000|9000|VERIFY",
       "orvane: not as expected: @compare(1,2,1)\n  left   1\n  right  2\n"
       "  they should be equal\norvane: there is a file there already\n"
       "orvane: a recording begins before the first reader is opened\n",
       1, "-D P=3F00"},
  });
  EXPECT_EQ(ReadText("saved"),
            "%A = 11\n%S = @xor(00A40000,00000000)\n%S\n; expect 9000\n00A40000 02 3F00\n"
            "; expect 6F .. 9000\n; left out: %X = **\n00200080 08 %X\n; expect 6985\n"
            "; left out: 00200080 02 **\n; left out: ; expect 6985\n; left out: %C = **\n"
            "00A40000 02 %P\n; expect 9000\n");
  EXPECT_TRUE(Shows(ReadText("log"), "00A40000023F00"));
  EXPECT_EQ(ReadText("there"), "1");
}

}  // namespace
}  // namespace host_test
