#include "host/secrets.h"

#include <gtest/gtest.h>

namespace host {
namespace {

TEST(Secrets, FollowAValueFromItsNameToItsUse) {
  Secrets secrets;
  const auto touches = [&](const char* line) { return secrets.Touches(ReadStatement(line)); };
  EXPECT_TRUE(touches("%UserPin = 1234"));
  EXPECT_TRUE(touches("PASSWORD = 1234"));
  EXPECT_TRUE(touches("00D60000 04 @xor(%MASTERKEY,00)"));
  EXPECT_TRUE(touches("00 20 0080 02 1234"));
  EXPECT_FALSE(touches("%LENGTH = @strlenh(%PIN)"));
  EXPECT_FALSE(touches("84D6000004 @mac(%KEY,00,00,1)"));
  EXPECT_FALSE(touches("%A = 00"));

  secrets.Follow(ReadStatement("%A = 24 %PIN"));
  secrets.Follow(ReadStatement("%b = %a FF"));
  EXPECT_TRUE(touches("%C = %B"));
  secrets.Follow(ReadStatement("%B = 00"));
  EXPECT_FALSE(touches("%C = %B"));
}

TEST(Secrets, AreFoundInAScriptBeforeItRuns) {
  std::vector<Statement> script;
  for (const char* line :
       {"%DIGITS = 1234", "%LEN = 08", "%OTHER = 55", "%BLOCK = 24 %DIGITS FFFFFFFFFF",
        "0020 0080 %LEN %BLOCK", "00D6 0000 01 %OTHER %RESP", "80D8 0000 02 %RESP %SW"}) {
    script.push_back(ReadStatement(line));
  }
  Secrets secrets;
  secrets.Learn(script);
  EXPECT_TRUE(secrets.Touches(script[0]));
  EXPECT_FALSE(secrets.Touches(script[1]));
  EXPECT_FALSE(secrets.Touches(script[2]));
  EXPECT_TRUE(secrets.Touches(script[3]));
  EXPECT_FALSE(secrets.Touches(script[5]));
}

TEST(Secrets, LeaveTheHeaderOfAMaskedStatement) {
  const auto mask = [](const char* line, size_t digits) {
    return MaskLiterals(ReadStatement(line), digits);
  };
  EXPECT_EQ(mask("00 20 00 80 08 24 12 34 FF", 10), "00 20 00 80 08 **");
  EXPECT_EQ(mask("0020008008241234 %X 56", 10), "0020008008 ** %X **");
  EXPECT_EQ(mask("00200080 %LEN 241234", 10), "00200080 %LEN **");
  EXPECT_EQ(mask("@xor(0020008008,1234)", 10), "@xor(**,**)");
  EXPECT_EQ(mask("  %PIN = 12 34", 0), "  %PIN = **");
}

}  // namespace
}  // namespace host
