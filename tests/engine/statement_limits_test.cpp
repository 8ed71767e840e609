#include <gtest/gtest.h>

#include "engine/script_host.h"
#include "support/small_stack.h"

namespace orvane_test {
namespace {

std::string Nested(int depth, const std::string& innermost, const char* call = "@strlen(") {
  std::string statement;
  for (int i = 0; i < depth; ++i) statement += call;
  statement += innermost;
  statement.append(static_cast<std::size_t>(depth), ')');
  return statement;
}

TEST(Nesting, Runs128DeepAndFailsDeeper) {
  EXPECT_EQ(RunOne("%X = " + Nested(128, "ABCDEFGHIJ")), (Outcome{0, "1"}));
  // The call at level 129 fails all those around it; the statement goes on inside it.
  EXPECT_EQ(RunOne("%X = " + Nested(129, "ABCDEFGHIJ")), (Outcome{0, "ABCDEFGHIJ"}));
  RunInSmallStack(256 * 1024, [] {
    RunOne(Nested(128, "@xor(@strmidh(%U,1,2),FF)"));
    RunOne(Nested(5000, "AB"));
  });
}

TEST(Statements, OfAnySizeAreRead) {
  EXPECT_EQ(RunOne("%BIG = " + std::string(20 << 20, 'A')).code, 0);
  EXPECT_EQ(RunOne("@strlen(%BIG)"), (Outcome{1, "20971520"}));
  EXPECT_EQ(RunOne("%BIG = " + std::string(1 << 20, ' ') + "1"), (Outcome{0, "1"}));
}

TEST(Commands, MakeValuesUpTo16MiBOnly) {
  SetVarValue("%HALF", std::string(8 << 20, 'A').c_str());
  EXPECT_EQ(RunOne("%MOST = @ASC2HEX(%HALF)").code, 0);
  const std::pair<std::string, Outcome> rows[] = {
      {"@strlen(%MOST)", {1, "16777216"}},
      {"@strlen(%MOST 00)", {1, "16777218"}},
      {"@strlen(@strmid(%MOST 00,1,99999999))", {1, ""}},
      {"@strlen(@strmid(%MOST 00,2,99999999))", {1, "16777216"}},
      {"@strlen(@xor(11,%MOST))", {1, "16777216"}},
      {"%X = 00 @xor(11,%MOST 22) 33", {0, "0033"}},
      {"%X = 00 @ASC2HEX(%HALF A) 33", {0, "0033"}},
      {"@setslot(%MOST A)", {3, ""}},
      {"%X = " + Nested(40, "AB", "@ASC2HEX("), {0, ""}}};
  for (const auto& [statement, outcome] : rows)
    EXPECT_EQ(RunOne(statement), outcome) << statement.substr(0, 40);
}

}  // namespace
}  // namespace orvane_test
