#include "host/secrets.h"

#include <gtest/gtest.h>

#include "host/run_program.h"

namespace host {
namespace {

TEST(Secrets, FollowAValueFromItsNameToItsUse) {
  Secrets secrets;
  const auto touches = [&](const char* line) { return secrets.Touches(ReadStatement(line)); };
  EXPECT_TRUE(touches("00D60000 04 @xor(%MASTERKEY,00)"));
  EXPECT_FALSE(touches("%LENGTH = @strlenh(%PIN)"));
  EXPECT_FALSE(touches("84D6000004 @mac(%KEY,00,00,1)"));
  EXPECT_FALSE(touches("%A = 00"));
  EXPECT_TRUE(touches("%MAC = @mac(404142 %X,00,00,1)"));
  EXPECT_TRUE(touches("00820000 08 @des(@xor(4041,%X),%RESP,1)"));
  EXPECT_TRUE(touches("@compare(@DesCbc(4041,00,00,1),00,1)"));
  EXPECT_FALSE(touches("@descbc(%A,4041,4243,1)"));

  secrets.Follow(ReadStatement("%A = 24 %PIN"), "");
  secrets.Follow(ReadStatement("%b = %a FF"), "");
  EXPECT_TRUE(touches("%C = %B"));
  secrets.Follow(ReadStatement("%B = 00"), "");
  EXPECT_FALSE(touches("%C = %B"));

  secrets.Follow(ReadStatement("%D = @SUBKEY(4041,%SERIAL)"), "");
  EXPECT_TRUE(touches("%C = %D"));
  secrets.Follow(ReadStatement("%D = @mac(4041,%SERIAL,00,1)"), "");
  EXPECT_FALSE(touches("%C = %D"));
}

// A run or a shell of which nothing shows 4711.
TEST(Secrets, ShowInNothingThatLedToThem) {
  const host_test::WorkingFolder folder;
  const struct {
    std::string options;
    std::string script;
    std::vector<std::string> shown;
  } rows[] = {
      {"", "%V = 0020008008244711FFFFFFFFFF\n%V\n", {"%V = **\n", "08  ** (8 bytes)   VERIFY"}},
      {"", "%P = 4711\n%C = 0020008008 24 %P FFFFFFFFFF\n%C\n", {"%P = **\n", "%C = ** %P **\n"}},
      {"", "%P = 4711FF\n%h = 00200080\n%H 08 24 %P FFFFFFFF\n", {"%h = 00200080\n"}},
      {"-D H=002000 -D P=\"08 24 47 11 FF FF FF\"", "%H 80 %P FFFF\n%X = %P\n", {"=    **"}},
      {"",
       "%P = 4711FF\n%H = @strmid(00200080FF,0,8)\n%C = %H 08 24 %P FFFFFFFF\n%D = %C\n%D\n",
       {"=    00200080\n", "%P = **\n"}},
      {"",
       "%T = 4711\n%U = %T\n0020008003 24 %U\n%T = 00A4000002\n%T 3F00\n%P = %U\n",
       {"%T = **\n", "%T = 00A4000002\n"}},
      {"",
       "%LEN = 03\n%B = 24 4711\n0020 0080 %LEN %B\n%R = 55\n00D6 0000 01 %R\n",
       {"%LEN = 03\n", "%R = 55\n", "01  55"}},
      {"", "%RESP = 244711\n0020008003 %RESP\n00A40000023F00\n%A = %RESP\n", {"=    6F"}},
      {"", "%P = 4711\n%M = @mac(4041424344454647,0420008003 24 %P,00,1)\n", {"%P = **\n"}},
      {"",
       "%K = 4711404142434445\n%L = %K\n%S = 42\n%D = @SUBKEY(%L,%S)\n"
       "%O = @des(%D, 0011, 1)\n%N = @des(4711404142434445, 0011, 1)\n",
       {"%K = **\n", "%S = 42\n", "@des(%D, **, 1)", "@des(**, **, 1)"}},
      {"",
       "%A = FF82000006 4711FFFFFFFF\n%B = 00DB3FFF04 4D024711\n%C = 00DB3FFF04 5C02 7E00\n",
       {"%A = **\n", "%B = **\n", "%C = 00DB"}},
      {"", "%Puk = 3:4711\n@openreader(%Puk)\n", {"@openreader failed"}},
      {"", "PASSWORD = 4711\n%UserPin = 4711\n@setreader(%UserPin)\n", {"@setreader failed"}},
      {"", "%PIN = 4711\n@compare(%PIN,4711,1)\n", {"@compare(%PIN,**,1)\n      ok   ** = **\n"}},
      {"",
       "%A = 6F258408F0AB\n@compare(%A,6F258408F0AC,0)\n",
       {"6F258408F0AB is not 6F258408F0AC"}},
  };
  for (const auto& row : rows) {
    host_test::WriteFile("script", row.script);
    const auto outcome = host_test::RunOrvane("run --simulate " + row.options + " script");
    const std::string all = outcome.out + outcome.err;
    EXPECT_FALSE(host_test::Shows(all, "4711") || host_test::Shows(all, "47 11")) << all;
    for (const std::string& text : row.shown) EXPECT_TRUE(host_test::Shows(all, text)) << all;
  }
  // Only where they are typed, and where they are asked for.
  for (const std::string arguments :
       {"shell --simulate", "apdu --simulate 002000800824471156FFFFFF", "apdu --simulate -"}) {
    const bool shell = arguments.starts_with("shell");
    const char* const input =
        shell ? "%P = 244711\n0020008003 %P\n%P\n%Q = %P 00\n" : "0020008003244711\n";
    std::string out = host_test::RunOrvane(arguments, input).out;
    std::erase(out, ' ');
    EXPECT_EQ(out.find("4711"), shell ? out.rfind("4711") : out.npos) << out;
  }
  host_test::WriteFile("script", "0020008003244711\n");
  const std::string shown = host_test::RunOrvane("run --simulate --show-secrets script").out;
  EXPECT_TRUE(host_test::Shows(shown, "24 47 11")) << shown;
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
  EXPECT_EQ(mask("%A = @strmid(%PIN 12, 0, 4) @mac(%K, 00, 00, 4711)", 0),
            "%A = @strmid(%PIN **, 0, 4) @mac(%K, **, **, **)");
}

}  // namespace
}  // namespace host
