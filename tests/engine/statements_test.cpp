#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <tuple>
#include <vector>

#include "engine/script_host.h"

namespace orvane_test {
namespace {

class Statements : public testing::Test {
 protected:
  void SetUp() override {
    SetVarValue("%K", "0011");
    SetVarValue("%abc", "Hello");
    SetVarValue("%EMPTY", "");
    SetVarValue("%PARTS", "a,(b) = @c");
    SetVarValue("%A", "aBcD");
    SetVarValue("%SPACED", "11 22");
    SetVarValue("%NEGATIVE", " \t-3");
    SetVarValue("%PLUS", "\v\r\n+2x");
    SetVarValue("%HUGE", "99999999999999999999");
  }

  static void RunRows(const std::vector<std::pair<const char*, Outcome>>& rows) {
    for (const auto& [statement, expected] : rows) {
      EXPECT_EQ(RunOne(statement), expected) << "statement: " << statement;
    }
  }
};

// Beside the examples of docs/language.md.
TEST_F(Statements, GiveTheirKindAndText) {
  RunRows({
      // Nothing to run.
      {"", {100, ""}},
      {"   // text", {100, ""}},
      {" \t ;", {100, ""}},
      {" ", {0, ""}},
      {"\t \t", {0, ""}},
      // Refused as a whole.
      {"(", {1, ""}},
      {", 1", {1, ""}},
      {"   )", {1, ""}},
      // Expressions: literals are joined, variables end a run, the text is upper-cased.
      {"%EMPTY", {1, ""}},
      {"00%K", {1, "00%K"}},
      {"00 /x", {1, "00/X"}},
      {"\"a b\"", {1, "\"AB\""}},
      {"00\r", {1, "00\r"}},
      {"\xE4\xFF", {1, "\xE4\xFF"}},
      // A value is never split again.
      {"%PARTS", {1, "A,(B) = @C"}},
      {"@strlen(%PARTS)", {1, "10"}},
      // A later = is an ordinary character, and a word of its own where blanks stand around it.
      {"%K %K =1", {1, "00110011"}},
      // Stray tokens contribute nothing.
      {"A,B", {1, "AB"}},
      {"=", {1, ""}},
      {"%K $X 22", {1, "001122"}},
      // Undefined variables.
      {"%K%K", {1, "var \"%K%K\" not define "}},
      {"%", {1, "var \"%\" not define "}},
  });
}

TEST_F(Statements, Assign) {
  // The last two: a name, and what GetVarValue gives for it afterwards.
  const std::tuple<const char*, Outcome, const char*, int> rows[] = {
      {"%A3\t=\t12", {0, "12"}, "%A3", 0},
      {"A 6 = C = d", {0, "Cd"}, "A6", 0},  // the second = is a stray token
      {"A 6=C=d", {0, "C=d"}, "A6", 0},
      {"A B=C", {0, "C"}, "AB", 0},
      {"AB CD = 1", {0, "1"}, "ABCD", 0},
      {"%A.7 = %abc %K x", {0, "Hello0011x"}, "%A.7", 0},
      {"%A8 = %PARTS", {0, "a,(b) = @c"}, "%A8", 0},
      // Not stored: a failed operand, a command that changed the kind, no value at all.
      {"%B2 = @compare(1,1,1)", {7, ""}, "%B2", 1001},
      {"%B3 = 00 @reset() 11", {4, ""}, "%B3", 1001},
      {"%B4 =", {1, "var \"%B4\" not define "}, "%B4", 1001},
      {"@x = 1", {1, "1"}, "@x", 1001},
      // The message of a failed call is a value like any other.
      {"%B5 = @strlen(%u)", {0, "var \"%U\" not define "}, "%B5", 0},
  };
  for (const auto& [statement, expected, name, exists] : rows) {
    EXPECT_EQ(RunOne(statement), expected) << "statement: " << statement;
    EXPECT_EQ(GetVarValue(name), exists) << "statement: " << statement;
  }
}

TEST_F(Statements, GiveTheValuesOfCommands) {
  RunRows({
      {"@strmid(ABC,9,1)", {1, ""}},
      {"@strmid(ABC,%NEGATIVE,%PLUS)", {1, "AB"}},
      {"@strmid(ABC,1,%NEGATIVE)", {1, ""}},
      {"@strmid(ABC,%HUGE,%HUGE)", {1, ""}},
      {"@strmidh(ABCDEF,1,%HUGE)", {1, "CDEF"}},
      {"@strmid(ABC,0x1,2)", {1, "AB"}},
      {"%X = @StrMid(%A,1,2)", {0, "Bc"}},
      {"@strlen(%EMPTY)", {1, "0"}},
      {"@strlen(%SPACED)", {1, "5"}},
      {"@strlenh(%SPACED)", {1, "2"}},
      {"@strlen(00 %A @strmid(%A,0,2))", {1, "8"}},
      {"%X = @xor(%EMPTY,abcd)", {0, "ABCD"}},
      {"@xor(112,FFFF)", {1, "EEDF"}},   // the odd digit and a zero share the second octet
      {"@xor(11,FFF)", {1, "EE"}},       // an odd digit of the mask does not count
      {"@xor(1G22,FFFF)", {1, "EFFF"}},  // what stands behind a bad digit reads as 00
      {"@xor(%SPACED,FFFF)", {1, "EEDD"}},
      {"@xor(FFFFFF,%SPACED 33)", {1, "EEDDCC"}},
      {"%X = 00 @xor(11,%EMPTY) 22", {0, "0022"}},
      {"@asc2hex(\xE4z)", {1, "E47A"}},
      {"@HEX2ASC(410042)", {1, "A"}},
      {"@HEX2ASC(414)", {1, "A@"}},
      {"@HEX2ASC(41G42)", {1, "A"}},
      {"@HEX2ASC(%EMPTY)", {1, ""}},
      // For the host.
      {"@compare(AB,CD,1)", {7, "0"}},
      {"@compare(AB,AB,2)", {7, "0"}},
      {"@compare(AB,CD,2)", {7, "0"}},
      {"@compare(AB,AB,%EMPTY)", {7, "0"}},
      {"@compare(AB,AB)", {7, ""}},
      {"@RESET( )", {4, ""}},
      {"@reset(abc) 00", {4, ""}},
      {"ab @stop()", {6, "ab"}},
      {"@openreader(%A x)", {8, "aBcDx"}},
      {"@setreader()", {2, ""}},
      {"@setreader(@setslot(2))", {3, "2"}},
      {"00 @strlen(@reset())", {4, "000"}},
      // An assignment shows what a failed call left, in its own case.
      {"%X = @strlen()", {0, ""}},
      {"%X = @strmid(AB,1)", {0, ""}},
      {"%X = @strmid(@strlen(01 @strlen(02 %u)),0,1)", {0, "0102var \"%U\" not define 01"}},
      {"%X = @strmid(ABC)1(2", {0, "BC"}},  // any separators will do
      // Behind a failed call the statement goes on where it stopped.
      {"%X = @strmid(%u,1,2) 33", {0, "var \"%U\" not define 1233"}},
  });
}

TEST(Variables, AreSeededAndNamedExactly) {
  for (const char* name : {"SYS_RESP", "sys_sw", "SYS_FUNCRTN", "SYS_STATE"})
    EXPECT_EQ(GetVarValue(name), 0) << name;
  EXPECT_EQ(GetVarValue(""), 1002);
  EXPECT_EQ(SetVarValue("%\xE4z{`@", "1"), 0);
  EXPECT_EQ(GetVarValue("%\xE4Z{`@"), 0);
  // Bytes that a letter's case bit alone tells apart from others.
  for (const char* other : {"%\xC4Z{`@", "%\xE4Z[`@", "%\xE4Z{@@", "%\xE4Z{``"})
    EXPECT_EQ(GetVarValue(other), 1001) << other;
}

TEST(Results, FillTheWholeBufferAndNoMore) {
  const std::string longest(511, 'A');
  const auto result = std::make_unique<char[]>(512);
  std::fill_n(result.get(), 512, 'x');
  EXPECT_EQ(RunScript(longest.c_str(), result.get()), 1);
  EXPECT_EQ(longest, result.get());

  for (const char* statement : {"", "  ", "; x", ")", static_cast<const char*>(nullptr)}) {
    std::fill_n(result.get(), 512, 'x');
    EXPECT_LE(RunScript(statement, result.get()), 100);
    EXPECT_EQ(std::count(result.get(), result.get() + 512, '\0'), 512);
  }

  // It may be the statement's own.
  char area[512] = "%SHARED = 00 11";
  EXPECT_EQ(RunScript(area, area), 0);
  EXPECT_STREQ(area, "0011");
}

TEST(Results, AreNeverHalfACommand) {
  const std::string longer(512, 'A');
  EXPECT_EQ(RunOne(longer), (Outcome{1024, ""}));
  EXPECT_EQ(RunOne("%LONG = " + longer), (Outcome{0, longer.substr(1)}));
  EXPECT_EQ(RunOne("@strlen(%LONG)"), (Outcome{1, "512"}));
  EXPECT_EQ(RunOne("%LONG"), (Outcome{1024, ""}));
  EXPECT_EQ(RunOne("@setreader(%LONG)"), (Outcome{1024, ""}));
  EXPECT_EQ(RunOne("%" + longer), (Outcome{1024, ""}));
  EXPECT_EQ(RunOne("%X = 00 %" + longer), (Outcome{1024, ""}));
}

}  // namespace
}  // namespace orvane_test
