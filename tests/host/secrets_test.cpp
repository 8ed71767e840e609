#include "host/secrets.h"

#include <gtest/gtest.h>

namespace host {
namespace {

std::vector<Statement> Script(std::initializer_list<const char*> lines) {
  std::vector<Statement> script;
  for (const char* line : lines) script.push_back(ReadStatement(line));
  return script;
}

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
  EXPECT_TRUE(touches("%MAC = @mac(404142 %X,00,00,1)"));
  EXPECT_TRUE(touches("00820000 08 @des(@xor(4041,%X),%RESP,1)"));
  EXPECT_TRUE(touches("@compare(@DesCbc(4041,00,00,1),00,1)"));
  EXPECT_FALSE(touches("@descbc(%A,4041,4243,1)"));

  secrets.Follow(ReadStatement("%A = 24 %PIN"));
  secrets.Follow(ReadStatement("%b = %a FF"));
  EXPECT_TRUE(touches("%C = %B"));
  secrets.Follow(ReadStatement("%B = 00"));
  EXPECT_FALSE(touches("%C = %B"));

  secrets.Follow(ReadStatement("%D = @SUBKEY(4041,%SERIAL)"));
  EXPECT_TRUE(touches("%C = %D"));
  secrets.Follow(ReadStatement("%D = @mac(4041,%SERIAL,00,1)"));
  EXPECT_FALSE(touches("%C = %D"));
}

TEST(Secrets, AreFoundInAScriptBeforeItRuns) {
  const struct {
    std::vector<Statement> script;
    std::string secret;  // a letter a line: s if it is
  } rows[] = {
      {Script({"%DIGITS = 1234", "%LEN = 08", "%OTHER = 55", "%BLOCK = 24 %DIGITS FFFFFFFFFF",
               "0020 0080 %LEN %BLOCK", "00D6 0000 01 %OTHER %RESP", "80D8 0000 02 %RESP %SW"}),
       "s--ss-s"},
      {Script({"%K = 4041", "%HALF = 40", "%L = %HALF 41", "%SERIAL = 42", "%DATA = 43",
               "%CARD = @SUBKEY(%L,%SERIAL)", "84D6000004 @mac(%K,%DATA,00,1)",
               "%OUT = @des(@xor(%CARD,FF),%DATA,1)"}),
       "sss--s-s"},
  };
  for (const auto& row : rows) {
    Secrets secrets;
    secrets.Learn(row.script);
    std::string found;
    for (const Statement& line : row.script) found += secrets.Touches(line) ? 's' : '-';
    EXPECT_EQ(found, row.secret);
  }
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
