// What reaches a provider and what comes of its answers, with a provider that records: see
// recording_provider.cpp.
#include <gtest/gtest.h>

#include <algorithm>

#include "engine/script_host.h"
#include "support/simulated_module.h"

namespace orvane_test {
namespace {

class ProviderCalls : public testing::Test {
 protected:
  void SetUp() override {
    provider_.Restart();
    SetVarValue("%NONE", "");
    SetVarValue("%SPACED", "01 23 45 67 89 AB CD EF");
    SetVarValue("%BLANKS", "   ");
    SetVarValue("%K8", "0123456789ABCDEF");
    SetVarValue("%K16", "0123456789ABCDEFFEDCBA9876543210");
    SetVarValue("%K24", "0123456789ABCDEFFEDCBA987654321000112233445566FF");
  }

  // The journal of a statement, without the quotes.
  static std::string Calls(const std::string& statement) {
    provider_.Restart();
    RunOne(statement);
    std::string journal = provider_.Journal();
    std::erase(journal, '"');
    return journal;
  }

  // Loaded before the library looks for a provider, so that it finds this one.
  static inline const support::SimulatedModule provider_{"orvane_crypto", u8"" RECORDING_FOLDER};
};

// No octet is like its neighbours, and none is 00.
std::string Digits(std::size_t octets) {
  std::string digits;
  for (std::size_t i = 0; i < octets; ++i) {
    for (const std::size_t half : {1 + i / 15 % 15, 1 + i % 15}) digits += "0123456789ABCDEF"[half];
  }
  return digits;
}

TEST_F(ProviderCalls, CarryWhatTheArgumentsSay) {
  const struct {
    const char* statement;
    std::string call;
  } rows[] = {
      {"@des(%K8,11,1)", "CryptoBlockFlagged(null/0, 0123456789ABCDEF/8, 11/1, 0)"},
      {"@des(%K8,11,01)", "CryptoBlockDefault(null/0, 0123456789ABCDEF/8, 11/1, 0)"},
      {"@DES(%K16,1122334455667788 99,%NONE)",
       "CryptoBlockDefault(null/0, 0123456789ABCDEFFEDCBA9876543210/16, 112233445566778899/9, 1)"},
      {"@des(%K24,%NONE,1)",
       "CryptoBlockFlagged(null/0, 0123456789ABCDEFFEDCBA987654321000112233445566FF/24, /0, 1)"},
      {"@descbc(%K8,11,a1b2,1)", "CryptoBlockFlagged(A1B2/2, 0123456789ABCDEF/8, 11/1, 3)"},
      {"@descbc(%K16,11,%NONE,2)",
       "CryptoBlockDefault(/0, 0123456789ABCDEFFEDCBA9876543210/16, 11/1, 4)"},
      {"@mac(%K8,11,22,1)", "CryptoMac(0123456789ABCDEF/8, 11/1, 22/1, 0, 0)"},
      {"@mac(%K16,11,%NONE,0)", "CryptoMac(0123456789ABCDEFFEDCBA9876543210/16, 11/1, /0, 0, 1)"},
      {"@SUBKEY(%K8,%NONE)", "CryptoSubKey(0123456789ABCDEF/8, /0, 0)"},
      {"@HASH(11)", "CryptoHash(11/1, 0, 0)"},
      {"@RSAPUBENC(CA1,11,41)", "CryptoRsaPublic(CA1, 11, 41, null, 0)"},
      // The last digit of an odd text is passed on, but not counted.
      {"@SUBKEY(%K8 1,112)", "CryptoSubKey(0123456789ABCDEF+10/8, 11+20/1, 0)"},
      {"@subkey(%K16 1,11)", "CryptoSubKey(0123456789ABCDEFFEDCBA9876543210+10/16, 11/1, 1)"},
      // Blanks count as digits, and so does what stands behind a bad one.
      {"@mac(%K8,%SPACED,%SPACED,0)",
       "CryptoMac(0123456789ABCDEF/8, 0123456789ABCDEF000000/11, 0123456789ABCDEF000000/11, 0, 0)"},
      {"@mac(%K8,11G233,2x44,0)", "CryptoMac(0123456789ABCDEF/8, 110000/3, 2000/2, 0, 0)"},
      // The other two commands take blanks away and leave nothing uncounted.
      {"@HASH(%SPACED)", "CryptoHash(0123456789ABCDEF/8, 0, 0)"},
      {"@HASH(abc)", "CryptoHash(ABC0/2, 0, 0)"},
      {"@RSAPUBENC(%SPACED,%SPACED,xY %BLANKS)",
       "CryptoRsaPublic(0123456789ABCDEF, 0123456789ABCDEF, xY, null, 0)"},
      {"@RSAPUBENC(CA1,%BLANKS,%NONE)", "CryptoRsaPublic(CA1, , , null, 0)"},
      // They nest.
      {"@mac(@SUBKEY(%K8,11) 334455667788,@HASH(22),%NONE,0)",
       "CryptoSubKey(0123456789ABCDEF/8, 11/1, 0) = 1 A1B2\nCryptoHash(22/1, 0, 0) = 1 A1B2\n"
       "CryptoMac(A1B2334455667788/8, A1B2/2, /0, 0, 0)"},
  };
  for (const auto& row : rows) {
    const char* const answer = row.call.starts_with("CryptoRsa") ? " = 1\n" : " = 1 A1B2\n";
    EXPECT_EQ(Calls(row.statement), row.call + answer) << row.statement;
  }
}

// A call with this area was made, or none at all.
void ExpectArea(const std::string& calls, const std::string& area, bool isCalled) {
  EXPECT_TRUE(isCalled ? calls.find(area) != calls.npos : calls.empty()) << calls << area;
}

TEST_F(ProviderCalls, CarryEveryOctetUpToTheLimitsOfTheAreas) {
  const struct {
    const char* entry;
    std::string before, behind;
    std::size_t most, mostBack;  // octets
  } rows[] = {{"CryptoBlockFlagged", "@des(%K8,", ",1)", 256, 256},
              {"CryptoBlockFlagged", "@descbc(%K8,", ",00,1)", 256, 256},
              {"CryptoBlockDefault", "@descbc(%K8,11,", ",0)", 16, 256},
              {"CryptoMac", "@mac(%K8,", ",00,0)", 256, 256},
              {"CryptoMac", "@mac(%K8,11,", ",0)", 16, 256},
              {"CryptoSubKey", "@SUBKEY(%K8,", ")", 256, 256},
              {"CryptoHash", "@HASH(", ")", 4096, 4096}};
  for (const auto& row : rows) {
    for (std::size_t count = row.most - 1; count <= row.most + 1; ++count) {
      const std::string digits = Digits(count);
      const std::string counted = std::string("/").append(std::to_string(count));
      ExpectArea(Calls(row.before + digits + row.behind), digits + counted, count <= row.most);
      const std::string odd = Calls(row.before + digits + "7" + row.behind);
      if (row.most == 4096) {  // there an odd digit makes up an octet
        ExpectArea(odd, digits + "70/4096", count < row.most);
      } else {
        ExpectArea(odd, digits + (count < row.most ? "+70" : "") + counted, count <= row.most);
      }
    }
    for (std::size_t count = row.mostBack - 1; count <= row.mostBack + 1; ++count) {
      const std::string digits = Digits(count);
      SetVarValue("%BACK", count <= row.mostBack ? digits.c_str() : "");
      provider_.Restart();
      provider_.Answer(row.entry, 1, digits.c_str());
      RunOne("%X = " + row.before + "11" + row.behind);
      EXPECT_EQ(RunOne("@compare(%X,%BACK,1)"), (Outcome{7, "1"})) << row.before << count;
    }
  }
}

TEST_F(ProviderCalls, AreNotMadeForABadKeyOrArgument) {
  for (const std::string command : {"@des(", "@descbc(", "@mac(", "@SUBKEY("}) {
    for (const std::size_t octets : {0u, 1u, 7u, 9u, 15u, 17u, 23u, 25u, 32u, 33u}) {
      SetVarValue("%KEY", Digits(octets).c_str());
      EXPECT_EQ(Calls(command + "%KEY,11,22,1)"), "") << command << octets;
    }
    for (const char* arguments : {"%SPACED,11,22,1)", "%K8,%U,22,1)", "%K8"}) {
      EXPECT_EQ(Calls(command + arguments), "") << command << arguments;
    }
  }
}

TEST_F(ProviderCalls, FailedCommandsLeaveTheirPlaceInTheStatement) {
  SetVarValue("%TEXT4", "4 1 ");
  SetVarValue("%LONG", Digits(257).c_str());
  SetVarValue("%LONGIV", Digits(17).c_str());
  const struct {
    const char* statement;
    const char* value;
  } rows[] = {
      // Behind a refused argument the statement goes on with what comes next.
      {"%X = AA @mac(%SPACED,33,44,1) BB", "AA33441BB"},
      {"%X = AA @SUBKEY(%NONE,33) BB", "AA33BB"},
      // One that is too long is refused when all of them have been read.
      {"%X = AA @des(%K8,%LONG,1) BB", "AABB"},
      {"%X = AA @descbc(%K8,%LONG,44,1) BB", "AABB"},
      {"%X = AA @descbc(%K8,33,%LONGIV,1) BB", "AABB"},
      {"%X = AA @mac(%K8,%LONG,44,1) BB", "AABB"},
      {"%X = AA @mac(%K8,33,%LONGIV,1) BB", "AABB"},
      {"%X = AA @SUBKEY(%K8,%LONG) BB", "AABB"},
      {"%X = AA @mac(%K8,%LONG,%U,1) BB", "AAvar \"%U\" not define 1BB"},
      {"%X = AA @RSAPUBENC(CA1,11,%TEXT4) BB", "AAData too long for public keyBB"},
      {"%X = AA @HASH() BB", "AABB"},
      {"%X = AA @HASH(%SPACED 1G) BB", "AA第18个字符不是16进制字符，请检查！BB"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(RunOne(row.statement), (Outcome{0, row.value})) << row.statement;
  }
}

TEST_F(ProviderCalls, ResultsAreShapedAndNeverTrusted) {
  constexpr std::int64_t kTrue = SIMULATOR_TRUE_LENGTH;
  const std::string des = "CryptoBlockFlagged @des(%K8,11,1)", sub = "CryptoSubKey @SUBKEY(%K8,11)",
                    cbc = "CryptoBlockDefault @descbc(%K8,11,22,0)",
                    mac = "CryptoMac @mac(%K8,11,22,0)", shortMac = "CryptoMac @mac(%K8,11,22,1)",
                    hash = "CryptoHash @HASH(11)", rsa = "CryptoRsaPublic @RSAPUBENC(CA1,11,41)";
  const struct {
    std::string call;  // of an entry, by a command
    std::int64_t result;
    const char* data;
    std::int64_t length;
    std::string value;  // between AA and BB
  } rows[] = {{des, 0, "C1C2C3", kTrue, "C1C2C3"},
              {"CryptoBlockFlagged @strlen(@des(%K8,11,1))", 1, "", 0, "0"},
              {des, 1, "C1", 3, "C10000"},
              {des, 1, "C1", -1, ""},
              {des, 1, "C1", INT32_MIN, ""},
              {"CryptoBlockFlagged @strlen(@des(%K8,11,1))", 1, nullptr, 0, ""},
              {cbc, 0, "C1C2C3", kTrue, "C1C2C3"},
              {sub, 0, "C1C2C3", kTrue, "C1C2C3"},
              {"CryptoSubKey @strlen(@SUBKEY(%K8,11))", 1, nullptr, 0, ""},
              {mac, 0, "C1C2C3C4C5", kTrue, "C1C2C3C4C5"},
              {shortMac, 0, "C1C2C3C4C5", kTrue, "C1C2C3C4"},
              {shortMac, 0, "C1C2C3", kTrue, "C1C2C3"},
              {"CryptoMac @mac(%K8,11,22,11)", 0, "C1C2C3C4C5", kTrue, "C1C2C3C4C5"},
              {mac, 1, "C1", -1, ""},
              {"CryptoMac @strlen(@mac(%K8,11,22,0))", 1, nullptr, 0, "0"},
              {hash, 256, "C1C2C3", kTrue, "C1C2C3"},
              {hash, 0, "C1C2C3", kTrue, ""},
              {hash, 1, "C1", -1, ""},
              {"CryptoHash @strlen(@HASH(11))", 1, nullptr, 0, "0"},
              {rsa, 0, "3143", kTrue, "RSA加密失败"},
              {rsa, 1, nullptr, 0, "RSA加密失败"},
              {rsa, 256, "303061304700", kTrue, "a0G"},
              {"CryptoRsaPublic @strlen(@RSAPUBENC(CA1,11,41))", 1, "3030", kTrue, "0"}};
  for (const auto& row : rows) {
    const std::size_t blank = row.call.find(' ');
    provider_.Restart();
    provider_.Answer(row.call.substr(0, blank).c_str(), row.result, row.data, row.length);
    EXPECT_EQ(RunOne("%X = AA" + row.call.substr(blank) + " BB"),
              (Outcome{0, "AA" + row.value + "BB"}))
        << "row " << &row - rows;
  }
}

TEST_F(ProviderCalls, RefuseStatementsAndReadersFromInsideACall) {
  static int callsBack;
  callsBack = 0;
  for (const std::string call : {"@des(%K8,11,1)", "@des(%K8,11,0)", "@mac(%K8,11,22,0)",
                                 "@SUBKEY(%K8,11)", "@HASH(11)", "@RSAPUBENC(CA1,11,41)"}) {
    const std::string statement = "%X = @strlen(00 " + call + " 4455)";
    provider_.Restart();
    const Outcome outcome = RunOne(statement);
    provider_.CallBack([] {
      ++callsBack;
      std::string result(512, 'x');
      EXPECT_EQ(RunScript("%INNER = 1", result.data()), ScriptException);
      EXPECT_EQ(result, std::string(512, '\0'));
      EXPECT_EQ(SetVarValue("%SET", "11"), ScriptDone);
      EXPECT_EQ(GetVarValue("%SET"), ScriptDone);
      EXPECT_EQ(SetReader(0), 0);
    });
    EXPECT_EQ(RunOne(statement), outcome) << statement;
    EXPECT_EQ(GetVarValue("%INNER"), ScriptUndefinedVariable);
    EXPECT_EQ(RunOne("%SET"), (Outcome{1, "11"}));
  }
  EXPECT_EQ(callsBack, 6);
}

}  // namespace
}  // namespace orvane_test
