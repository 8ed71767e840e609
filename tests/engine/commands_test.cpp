#include <gtest/gtest.h>

#include "engine/script_host.h"

namespace orvane_test {
namespace {

struct CommandRow {
  const char* statement;
  Outcome expected;
};

class Commands : public testing::Test {
 protected:
  void SetUp() override {
    SetVarValue("%A", "aBcD");
    SetVarValue("%EMPTY", "");
    SetVarValue("%SPACED", "11 22");
    SetVarValue("%NEGATIVE", " \t-3");
    SetVarValue("%PLUS", "+2x");
    SetVarValue("%HUGE", "99999999999999999999");
  }
};

TEST_F(Commands, GiveTheirValues) {
  const CommandRow rows[] = {
      {"@strmid(ABCDEF,1,2)", {1, "BC"}},
      {"@strmidh(ABCDEF,1,2)", {1, "CDEF"}},
      {"@strmid(ABC,2,9)", {1, "C"}},
      {"@strmid(ABC,9,1)", {1, ""}},
      {"@strmid(ABC,x,1)", {1, "A"}},
      {"@strmid(ABC,%NEGATIVE,%PLUS)", {1, "AB"}},
      {"@strmid(ABC,1,%NEGATIVE)", {1, ""}},
      {"@strmid(ABC,%HUGE,%HUGE)", {1, ""}},
      {"@strmidh(ABCDEF,1,%HUGE)", {1, "CDEF"}},
      {"@strmid(ABC,0x1,2)", {1, "AB"}},
      {"@strmid(%EMPTY,0,1)", {1, ""}},
      {"@STRMID(12 34,1,2)", {1, "23"}},
      {"%X = @StrMid(%A,1,2)", {0, "Bc"}},
      {"@strlen(ABC)", {1, "3"}},
      {"@strlenh(ABC)", {1, "1"}},
      {"@strlen(%EMPTY)", {1, "0"}},
      {"@strlen(%SPACED)", {1, "5"}},
      {"@strlenh(%SPACED)", {1, "2"}},
      {"@strlen ( %A )", {1, "4"}},
      {"@strlen(AB CD)", {1, "4"}},
      {"@strlen(%A 00)", {1, "6"}},
      {"@strlen(@strlen(ABCDEFGHIJ))", {1, "2"}},
      {"@strlen(00 %A @strmid(%A,0,2))", {1, "8"}},
      {"@strlen(%A) 00", {1, "400"}},
      {"@xor(1122,FFFF)", {1, "EEDD"}},
      {"@xor(11,FFFF)", {1, "EEFF"}},
      {"@xor(112233,AABB)", {1, "8899"}},
      {"@xor(112244,FF)", {1, "88"}},
      {"%X = @xor(%EMPTY,abcd)", {0, "ABCD"}},
      {"@xor(112,FFFF)", {1, "EEDF"}},   // the odd digit and a zero share the second octet
      {"@xor(11,FFF)", {1, "EE"}},       // an odd digit of the mask does not count
      {"@xor(1G22,FFFF)", {1, "EFFF"}},  // what stands behind a bad digit reads as 00
      {"@xor(%SPACED,FFFF)", {1, "EEDD"}},
      {"@xor(FFFFFF,%SPACED 33)", {1, "EEDDCC"}},
      {"%X = 00 @xor(11,%EMPTY) 22", {0, "0022"}},
      {"%X = 00 @xor(11,F) 22", {0, "0022"}},
      {"@ASC2HEX(AB)", {1, "4142"}},
      {"@asc2hex(\xE4z)", {1, "E47A"}},
      {"@HEX2ASC(6162)", {1, "AB"}},
      {"%X=@HEX2ASC(6162)", {0, "ab"}},
      {"@HEX2ASC(410042)", {1, "A"}},
      {"@HEX2ASC(414)", {1, "A@"}},
      {"@HEX2ASC(41G42)", {1, "A"}},
      {"@HEX2ASC(%EMPTY)", {1, ""}},
  };
  for (const CommandRow& row : rows) {
    EXPECT_EQ(RunOne(row.statement), row.expected) << "statement: " << row.statement;
  }
}

TEST_F(Commands, TellTheHostWhatTheStatementAsksFor) {
  const CommandRow rows[] = {
      {"@compare(AB,AB,1)", {7, "1"}},
      {"@compare(AB,AB,0)", {7, "0"}},
      {"@compare(AB,CD,0)", {7, "1"}},
      {"@compare(AB,CD,1)", {7, "0"}},
      {"@compare(AB,ab,1)", {7, "0"}},
      {"@compare(AB,AB,2)", {7, "0"}},
      {"@compare(AB,CD,2)", {7, "0"}},
      {"@compare(AB,AB,%EMPTY)", {7, "0"}},
      {"@compare(AB,AB)", {7, ""}},
      {"@strlen(@compare(A,A,1))", {7, "1"}},
      {"@reset()", {4, ""}},
      {"@RESET( )", {4, ""}},
      {"@reset(abc) 00", {4, ""}},
      {"00 @reset() 11", {4, "00"}},
      {"@stop()", {6, ""}},
      {"ab @stop()", {6, "ab"}},
      {"@setreader(2)", {2, "2"}},
      {"@setslot(%A)", {3, "aBcD"}},
      {"@OPENREADER(ab)", {8, "ab"}},
      {"@openreader(%A x)", {8, "aBcDx"}},
      {"@setreader()", {2, ""}},
      {"@setslot(%u)", {3, "var \"%U\" not define "}},
      {"@setreader(1) @setslot(2)", {2, "1"}},
      {"@setreader(@setslot(2))", {3, "2"}},
      {"00 @strlen(@reset())", {4, "000"}},
  };
  for (const CommandRow& row : rows) {
    EXPECT_EQ(RunOne(row.statement), row.expected) << "statement: " << row.statement;
  }
}

TEST_F(Commands, FailWithTheTextOfTheFailedOperand) {
  // An assignment shows what a call left, in its own case.
  const CommandRow rows[] = {
      {"%X = @strlen()", {0, ""}},
      {"%X = @strlen", {0, ""}},
      {"%X = @strmid(AB,1)", {0, ""}},
      {"%X = @strlen(%u)", {0, "var \"%U\" not define "}},
      {"%X = @strlen(00 %u)", {0, "00var \"%U\" not define "}},
      {"%X = @strmid(@strlen(01 @strlen(02 %u)),0,1)", {0, "0102var \"%U\" not define 01"}},
      // Behind a failed call the statement goes on where it stopped.
      {"%X = @strmid(%u,1,2) 33", {0, "var \"%U\" not define 1233"}},
      // An operand that leaves no text stands for the one before it once more.
      {"%X = @strlen(AB @nosuch(1))", {0, "ABAB1"}},
      // Surplus arguments, missing parentheses and other separators go unnoticed.
      {"%X = @strlen(AB,CD)", {0, "2CD"}},
      {"%X = @strlen(AB", {0, "2"}},
      {"%X = @strmid(ABC)1(2", {0, "BC"}},
  };
  for (const CommandRow& row : rows) {
    EXPECT_EQ(RunOne(row.statement), row.expected) << "statement: " << row.statement;
  }
}

}  // namespace
}  // namespace orvane_test
