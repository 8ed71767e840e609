#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "engine/script_host.h"
#include "memory/failing_allocations.h"

namespace orvane_test {
namespace {

const std::string kLong = "303132333435363738394041424344454647484950515253";
const std::string kKey = "0123456789ABCDEFFEDCBA9876543210";
const std::string kModulus = "E1F3A8D24C5B6E7F90123456789ABCDEF0123456789ABCDEF0123456789ABCDF";

Outcome RunShort(int allocations, const std::string& statement, bool once = false) {
  char text[512];
  const int code = RunWith(
      allocations, [&] { return RunScript(statement.c_str(), text); }, once);
  return {code, text};
}

// First in the file: only the first call of a process makes the engine.
TEST(Memory, MissingMakesNoEngine) {
  const auto set = [] { return SetVarValue("%A", "1"); };
  int allocations = 0;
  int code = 0;
  while ((code = RunWith(allocations, set)) == ScriptNoEngine) ++allocations;
  EXPECT_GT(allocations, 0);
  EXPECT_EQ(set(), 0);
  EXPECT_EQ(RunOne("%A"), (Outcome{1, "1"}));
}

TEST(Memory, MissingLeavesVariables) {
  const std::string name = "%" + kLong;
  const std::string longer = kLong + kLong, longest = longer + longer;
  const auto set = [&](const std::string& value) {
    return SetVarValue(name.c_str(), value.c_str());
  };
  const auto get = [&] { return GetVarValue(name.c_str()); };
  const auto setFirst = [&] { return set(kLong) == ScriptDone; };
  EXPECT_GT(FailuresOf(setFirst, [&] { EXPECT_EQ(get(), ScriptUndefinedVariable); }), 0);
  const auto setAgain = [&] { return set(longer) == ScriptDone; };
  EXPECT_GT(FailuresOf(setAgain, [&] { EXPECT_EQ(Value(name).text, kLong); }), 0);
  EXPECT_EQ(RunWith(0, [&] { return set(longest); }), ScriptException);
  EXPECT_EQ(RunWith(0, get), ScriptException);
  EXPECT_EQ(Value(name).text, longer);
}

TEST(Memory, MissingForTheStatementItselfIsAnException) {
  RunOne("");
  // The text takes memory, and so do its tokens.
  for (const std::string& statement :
       {"1" + std::string(3000, ' '), "1" + std::string(3000, ')')}) {
    EXPECT_EQ(RunShort(0, statement), (Outcome{ScriptException, ""}));
    EXPECT_EQ(RunOne(statement).code, KindExpression);
  }
}

// A statement in which L, K and M stand for the long value, the key and the modulus.
std::string Written(const char* pattern) {
  std::string statement;
  for (; *pattern != '\0'; ++pattern) {
    statement += *pattern == 'L'   ? kLong
                 : *pattern == 'K' ? kKey
                 : *pattern == 'M' ? kModulus
                                   : std::string(1, *pattern);
  }
  return statement;
}

TEST(Memory, MissingInACommandIsAFailureOfTheStatement) {
  ASSERT_EQ(RunOne("@strlen(@hash(" + kLong + "))").text, "40") << "there is no crypto module";
  SetVarValue("%KEPT", kLong.c_str());
  for (const char* pattern : {"@strmid(L,1,20)",
                              "@strmidh(L,1,20)",
                              "@strlen(L)",
                              "@strlenh(L)",
                              "@xor(L,K)",
                              "@asc2hex(L)",
                              "@hex2asc(L)",
                              "@compare(L,L,1)",
                              "@setreader(L)",
                              "@setslot(L)",
                              "@openreader(L)",
                              "@reset()",
                              "@stop()",
                              "@des(K,L,1)",
                              "@descbc(K,L,K,1)",
                              "@mac(K,L,K,1)",
                              "@subkey(K,K)",
                              "@hash(L)",
                              "@rsapubenc(M,010001,L)",
                              "@strlen(@xor(@asc2hex(L),K))",
                              "L K"}) {
    for (const std::string target : {"", "%OUT = "}) {
      const std::string statement = target + Written(pattern);
      SCOPED_TRACE(statement);
      const Outcome right = RunOne(statement);
      ASSERT_TRUE(right.code <= 8);
      char text[512];
      const int needed = AllocationsOf([&] { RunScript(statement.c_str(), text); });
      for (int run = 0; run < 2 * needed; ++run) {
        SetVarValue("%OUT", kKey.c_str());
        const Outcome outcome = RunShort(run / 2, statement, run % 2 == 1);
        // The right outcome, an exception, or what a failed call leaves of its arguments.
        EXPECT_TRUE(outcome.code == right.code || outcome.code == ScriptException ||
                    outcome == (Outcome{KindExpression, ""}))
            << outcome;
        const bool stored = outcome.code == 0 && !target.empty();
        EXPECT_EQ(Value("%OUT").text, stored ? outcome.text : kKey);
        EXPECT_EQ(Value("%KEPT").text, kLong);
        EXPECT_EQ(RunOne(statement), right);
      }
    }
  }
}

}  // namespace
}  // namespace orvane_test
