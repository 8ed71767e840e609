#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "engine/script_host.h"

namespace orvane_test {
namespace {

struct StatementRow {
  const char* statement;
  Outcome expected;
};

void RunRows(const std::vector<StatementRow>& rows) {
  for (const StatementRow& row : rows) {
    EXPECT_EQ(RunOne(row.statement), row.expected) << "statement: " << row.statement;
  }
}

class Statements : public testing::Test {
 protected:
  void SetUp() override {
    SetVarValue("%K", "0011");
    SetVarValue("%abc", "Hello");
    SetVarValue("%EMPTY", "");
    SetVarValue("%PARTS", "a,(b) = @c");
  }
};

TEST_F(Statements, GiveTheirKindAndText) {
  RunRows({
      // Nothing to run.
      {"", {100, ""}},
      {"; text", {100, ""}},
      {"   // text", {100, ""}},
      {"/x", {100, ""}},
      {" \t ;", {100, ""}},
      {" ", {0, ""}},
      {"\t \t", {0, ""}},
      // Refused as a whole.
      {"(", {1, ""}},
      {", 1", {1, ""}},
      {"   )", {1, ""}},
      {"(%K)", {1, ""}},
      // Expressions: literals are joined, variables end a run, the text is upper-cased.
      {"00 A4 04 00", {1, "00A40400"}},
      {"ab %K 00", {1, "AB001100"}},
      {"00 a4 %K 00", {1, "00A4001100"}},
      {"%ABC", {1, "HELLO"}},
      {"%k", {1, "0011"}},
      {"%EMPTY", {1, ""}},
      {"00%K", {1, "00%K"}},
      {"00 ; text", {1, "00;TEXT"}},
      {"00 /x", {1, "00/X"}},
      {"\"a b\"", {1, "\"AB\""}},
      {"00\r", {1, "00\r"}},
      {"\xE4\xFF", {1, "\xE4\xFF"}},
      // A value is never split again.
      {"%PARTS", {1, "A,(B) = @C"}},
      {"@strlen(%PARTS)", {1, "10"}},
      // A later = is an ordinary character, and a word of its own where blanks stand around it.
      {"A B C=D", {1, "ABC=D"}},
      {"%K %K =1", {1, "00110011"}},
      // Stray tokens contribute nothing.
      {"A,B", {1, "AB"}},
      {"00 (11) 22", {1, "001122"}},
      {"=", {1, ""}},
      {"= 00", {1, "00"}},
      {"%K $X 22", {1, "001122"}},
      {"@nosuch(0011)", {1, "0011"}},
      {"@nosuch", {1, ""}},
      {"%K @reset", {1, "0011"}},
      // Dollar statements are not evaluated.
      {"$ any text, at all", {5, ""}},
      {"$X = 1", {5, ""}},
      {"$ %UNDEFINED", {5, ""}},
      // Undefined variables.
      {"%u", {1, "var \"%U\" not define "}},
      {"00 %u 11", {1, "var \"%U\" not define "}},
      {"%K%K", {1, "var \"%K%K\" not define "}},
      {"%K00", {1, "var \"%K00\" not define "}},
      {"%", {1, "var \"%\" not define "}},
      {"@strlen(%u)", {1, "VAR \"%U\" NOT DEFINE "}},
  });
}

struct AssignmentRow {
  const char* statement;
  Outcome expected;
  const char* name;
  int exists;  // what GetVarValue gives for the name afterwards
};

TEST_F(Statements, Assign) {
  const AssignmentRow rows[] = {
      {"%A1 = 00 11", {0, "0011"}, "%a1", 0},
      {"%A2=12", {0, "12"}, "%A2", 0},
      {"%A3\t=\t12", {0, "12"}, "%A3", 0},
      {"%a4 = ab", {0, "ab"}, "%A4", 0},
      {"A5=B=C", {0, "B=C"}, "A5", 0},
      {"A 6 = C = d", {0, "Cd"}, "A6", 0},  // the second = is a stray token
      {"A 6=C=d", {0, "C=d"}, "A6", 0},
      {"A B=C", {0, "C"}, "AB", 0},
      {"AB CD = 1", {0, "1"}, "ABCD", 0},
      {"%A.7 = %abc %K x", {0, "Hello0011x"}, "%A.7", 0},
      {"%A8 = %PARTS", {0, "a,(b) = @c"}, "%A8", 0},
      {"%A9 = %EMPTY", {0, ""}, "%A9", 0},
      {"KEY = 12", {0, "12"}, "KEY", 0},
      {"KEY = 13", {0, "13"}, "%KEY", 1001},
      {"SYS_SW = 9000", {0, "9000"}, "%SYS_SW", 1001},
      // Not stored: a failed operand, a command that changed the kind, no value at all.
      {"%B1 = 00 %u", {1, "var \"%U\" not define "}, "%B1", 1001},
      {"%B2 = @compare(1,1,1)", {7, ""}, "%B2", 1001},
      {"%B3 = 00 @reset() 11", {4, ""}, "%B3", 1001},
      {"%B4 =", {1, "var \"%B4\" not define "}, "%B4", 1001},
      {"@x = 1", {1, "1"}, "@x", 1001},
      // The message of a failed call is a value like any other.
      {"%B5 = @strlen(%u)", {0, "var \"%U\" not define "}, "%B5", 0},
  };
  for (const AssignmentRow& row : rows) {
    EXPECT_EQ(RunOne(row.statement), row.expected) << "statement: " << row.statement;
    EXPECT_EQ(GetVarValue(row.name), row.exists) << "statement: " << row.statement;
  }
}

TEST_F(Statements, KeepVariablesUntilTheyAreOverwritten) {
  EXPECT_EQ(RunOne("%C = 1"), (Outcome{0, "1"}));
  EXPECT_EQ(RunOne("%c = %C 00"), (Outcome{0, "100"}));
  EXPECT_EQ(RunOne("%C = %UNDEFINED"), (Outcome{1, "var \"%UNDEFINED\" not define "}));
  EXPECT_EQ(RunOne("(refused"), (Outcome{1, ""}));
  EXPECT_EQ(Value("%C"), (Outcome{0, "100"}));
  EXPECT_EQ(Value("%abc"), (Outcome{0, "Hello"}));
}

TEST(Variables, AreSeededAndNamedExactly) {
  for (const char* name : {"SYS_RESP", "sys_sw", "SYS_FUNCRTN", "SYS_STATE"}) {
    EXPECT_EQ(GetVarValue(name), 0) << name;
  }
  EXPECT_EQ(GetVarValue("%SYS_RESP"), 1001);
  EXPECT_EQ(SetVarValue("%SYS_RESP", "6F"), 0);
  EXPECT_EQ(GetVarValue("%sys_resp"), 0);
  EXPECT_EQ(SetVarValue("", "1"), 1002);
  EXPECT_EQ(GetVarValue(""), 1002);
  EXPECT_EQ(SetVarValue("%\xE4z", "1"), 0);
  EXPECT_EQ(GetVarValue("%\xE4Z"), 0);
}

TEST(Results, FillTheWholeBufferAndNoMore) {
  const std::string longest(511, 'A');
  const auto result = std::make_unique<char[]>(512);
  std::fill_n(result.get(), 512, 'x');
  EXPECT_EQ(RunScript(longest.c_str(), result.get()), 1);
  EXPECT_EQ(longest, result.get());

  for (const char* statement : {"", "  ", "; x", ")"}) {
    std::fill_n(result.get(), 512, 'x');
    RunScript(statement, result.get());
    EXPECT_EQ(std::count(result.get(), result.get() + 512, '\0'), 512) << statement;
  }
  std::fill_n(result.get(), 512, 'x');
  EXPECT_EQ(RunScript(nullptr, result.get()), 100);
  EXPECT_EQ(std::count(result.get(), result.get() + 512, '\0'), 512);
}

TEST(Results, MayShareTheBufferWithTheStatement) {
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
  EXPECT_EQ(RunOne("%LONG = @reset()"), (Outcome{4, ""}));
  EXPECT_EQ(RunOne("@strlen(%LONG)"), (Outcome{1, "512"}));
}

}  // namespace
}  // namespace orvane_test
