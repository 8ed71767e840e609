// What reaches a provider and what comes of its answers, with a provider that records: see
// recording_provider.h.
#include <gtest/gtest.h>

#include <stdexcept>

#include "crypto/recording_provider.h"
#include "engine/script_host.h"
#include "simulators/simulator.h"
#include "support/module_loading.h"

namespace orvane_test {
namespace {

struct RecordingProvider {
  decltype(&SimulatorRestart) restart;
  decltype(&SimulatorJournal) journal;
  decltype(&SimulatorAnswer) answer;
};

// Loaded before the library looks for a provider, so that it finds this one.
RecordingProvider Load() {
  std::string why;
  void* const module = support::LoadModule(RECORDING_PROVIDER, why);
  if (module == nullptr) throw std::runtime_error(why);
  const auto find = [module](auto* declared, const char* name) {
    return reinterpret_cast<decltype(declared)>(support::FindExport(module, name));
  };
  return {find(&SimulatorRestart, "SimulatorRestart"), find(&SimulatorJournal, "SimulatorJournal"),
          find(&SimulatorAnswer, "SimulatorAnswer")};
}

class ProviderCalls : public testing::Test {
 protected:
  void SetUp() override {
    provider_.restart();
    SetVarValue("%NONE", "");
    SetVarValue("%SPACED", "01 23 45 67 89 AB CD EF");
    SetVarValue("%BLANKS", "   ");
    SetVarValue("%K8", "0123456789ABCDEF");
    SetVarValue("%K16", "0123456789ABCDEFFEDCBA9876543210");
    SetVarValue("%K24", "0123456789ABCDEFFEDCBA987654321000112233445566FF");
  }

  // The journal of a statement, without the end of its last line.
  std::string Calls(const std::string& statement) {
    provider_.restart();
    RunOne(statement);
    std::string journal = provider_.journal();
    if (!journal.empty()) journal.pop_back();
    return journal;
  }

  static inline const RecordingProvider provider_ = Load();
};

std::string Digits(std::size_t octets) { return std::string(2 * octets, '7'); }

TEST_F(ProviderCalls, CarryWhatTheArgumentsSay) {
  struct Row {
    const char* statement;
    const char* call;
  };
  const Row rows[] = {
      {"@des(%K8,11,1)",
       R"(CryptoBlockFlagged("null/0", "0123456789ABCDEF/8", "11/1", 0) = 1 A1B2)"},
      {"@des(%K8,11,0)",
       R"(CryptoBlockDefault("null/0", "0123456789ABCDEF/8", "11/1", 0) = 1 A1B2)"},
      {"@des(%K8,11,01)",
       R"(CryptoBlockDefault("null/0", "0123456789ABCDEF/8", "11/1", 0) = 1 A1B2)"},
      {"@des(%K8,11,%NONE)",
       R"(CryptoBlockDefault("null/0", "0123456789ABCDEF/8", "11/1", 0) = 1 A1B2)"},
      {"@DES(%K16,1122334455667788 99,1)",
       R"(CryptoBlockFlagged("null/0", "0123456789ABCDEFFEDCBA9876543210/16", )"
       R"("112233445566778899/9", 1) = 1 A1B2)"},
      {"@des(%K24,%NONE,1)",
       R"(CryptoBlockFlagged("null/0", "0123456789ABCDEFFEDCBA987654321000112233445566FF/24", )"
       R"("/0", 1) = 1 A1B2)"},
      {"@descbc(%K8,11,a1b2,1)",
       R"(CryptoBlockFlagged("A1B2/2", "0123456789ABCDEF/8", "11/1", 3) = 1 A1B2)"},
      {"@descbc(%K16,11,%NONE,2)",
       R"(CryptoBlockDefault("/0", "0123456789ABCDEFFEDCBA9876543210/16", "11/1", 4) = 1 A1B2)"},
      {"@descbc(%K8,11,00112233445566778899AABBCCDDEEFF,1)",
       R"(CryptoBlockFlagged("00112233445566778899AABBCCDDEEFF/16", "0123456789ABCDEF/8", "11/1", )"
       R"(3) = 1 A1B2)"},
      {"@mac(%K8,11,22,1)", R"(CryptoMac("0123456789ABCDEF/8", "11/1", "22/1", "0", 0) = 1 A1B2)"},
      {"@mac(%K16,11,%NONE,0)",
       R"(CryptoMac("0123456789ABCDEFFEDCBA9876543210/16", "11/1", "/0", "0", 1) = 1 A1B2)"},
      {"@SUBKEY(%K8,%NONE)", R"(CryptoSubKey("0123456789ABCDEF/8", "/0", 0) = 1 A1B2)"},
      {"@subkey(%K16,11)",
       R"(CryptoSubKey("0123456789ABCDEFFEDCBA9876543210/16", "11/1", 1) = 1 A1B2)"},
      {"@HASH(11)", R"(CryptoHash("11/1", 0, 0) = 1 A1B2)"},
      {"@RSAPUBENC(CA1,11,41)", R"(CryptoRsaPublic("CA1", "11", "41", null, 0) = 1)"},
      // The last digit of an odd text is passed on, but not counted.
      {"@SUBKEY(%K8 1,112)", R"(CryptoSubKey("0123456789ABCDEF+10/8", "11+20/1", 0) = 1 A1B2)"},
      {"@SUBKEY(%K16 1,11)",
       R"(CryptoSubKey("0123456789ABCDEFFEDCBA9876543210+10/16", "11/1", 1) = 1 A1B2)"},
      // Blanks count as digits, and so does what stands behind a bad one.
      {"@mac(%K8,%SPACED,%SPACED,0)",
       R"(CryptoMac("0123456789ABCDEF/8", "0123456789ABCDEF000000/11", )"
       R"("0123456789ABCDEF000000/11", "0", 0) = 1 A1B2)"},
      {"@mac(%K8,11G233,2x44,0)",
       R"(CryptoMac("0123456789ABCDEF/8", "110000/3", "2000/2", "0", 0) = 1 A1B2)"},
      // The other two commands take blanks away and leave nothing uncounted.
      {"@HASH(%SPACED)", R"(CryptoHash("0123456789ABCDEF/8", 0, 0) = 1 A1B2)"},
      {"@HASH(abc)", R"(CryptoHash("ABC0/2", 0, 0) = 1 A1B2)"},
      {"@RSAPUBENC(%SPACED,%SPACED,xY %BLANKS)",
       R"(CryptoRsaPublic("0123456789ABCDEF", "0123456789ABCDEF", "xY", null, 0) = 1)"},
      {"@RSAPUBENC(CA1,%BLANKS,%NONE)", R"(CryptoRsaPublic("CA1", "", "", null, 0) = 1)"},
  };
  for (const Row& row : rows)
    EXPECT_EQ(Calls(row.statement), row.call + std::string()) << row.statement;
}

TEST_F(ProviderCalls, GoThroughUpToTheLimitsOfTheAreasOnly) {
  struct Row {
    std::string before, behind;
    std::size_t most;  // octets
  };
  const Row rows[] = {
      {"@des(%K8,", ",1)", 256},  {"@descbc(%K8,", ",00,1)", 256}, {"@mac(%K8,", ",00,1)", 256},
      {"@SUBKEY(%K8,", ")", 256}, {"@descbc(%K8,11,", ",1)", 16},  {"@mac(%K8,11,", ",1)", 16},
      {"@HASH(", ")", 4096},
  };
  for (const Row& row : rows) {
    const std::string most = Digits(row.most);
    const std::string digits = Calls(row.before + most + row.behind);
    EXPECT_NE(digits.find(most + "/" + std::to_string(row.most)), digits.npos) << row.before;
    EXPECT_EQ(Calls(row.before + most + "77" + row.behind), "") << row.before;
    const bool odd = row.most < 4096;  // there an odd digit makes up an octet
    EXPECT_EQ(Calls(row.before + most + "7" + row.behind) != "", odd) << row.before;
  }
}

TEST_F(ProviderCalls, AreNotMadeForABadKeyOrArgument) {
  for (const char* command : {"@des(", "@descbc(", "@mac(", "@SUBKEY("}) {
    for (const std::size_t octets : {1u, 7u, 9u, 15u, 17u, 23u, 25u, 32u, 33u}) {
      EXPECT_EQ(Calls(command + Digits(octets) + ",11,22,1)"), "") << command << octets;
    }
    EXPECT_EQ(Calls(command + std::string("%SPACED,11,22,1)")), "") << command;
    EXPECT_EQ(Calls(command + std::string("%NONE,11,22,1)")), "") << command;
    EXPECT_EQ(Calls(command + std::string("%K8,%U,22,1)")), "") << command;
    EXPECT_EQ(Calls(command + std::string("%K8")), "") << command;
  }
}

TEST_F(ProviderCalls, FailedCommandsLeaveTheirPlaceInTheStatement) {
  SetVarValue("%TEXT4", "4 1 ");
  SetVarValue("%LONG", Digits(257).c_str());
  SetVarValue("%LONGIV", Digits(17).c_str());
  struct Row {
    const char* statement;
    const char* value;
  };
  const Row rows[] = {
      // Behind a refused argument the statement goes on with what comes next.
      {"%X = AA @des(1122,3344,1) BB", "AA33441BB"},
      {"%X = AA @mac(%SPACED,33,44,1) BB", "AA33441BB"},
      {"%X = AA @SUBKEY(%NONE,33) BB", "AA33BB"},
      {"%X = AA @des(%K8,%LONG,1) BB", "AA1BB"},
      {"%X = AA @descbc(%K8,33,%LONGIV,1) BB", "AA1BB"},
      {"%X = AA @SUBKEY(%K8,%LONG) BB", "AABB"},
      {"%X = AA @RSAPUBENC(CA1,11,4141) BB", "AAData too long for public keyBB"},
      {"%X = AA @RSAPUBENC(CA1,11,%TEXT4) BB", "AAData too long for public keyBB"},
      {"%X = AA @HASH(%NONE) BB", "AAHEX串为空，请检查！BB"},
      {"%X = AA @HASH(%BLANKS) BB", "AAHEX串为空，请检查！BB"},
      {"%X = AA @HASH() BB", "AABB"},
      {"%X = AA @HASH(1G) BB", "AA第2个字符不是16进制字符，请检查！BB"},
      {"%X = AA @HASH(%SPACED 1G) BB", "AA第18个字符不是16进制字符，请检查！BB"},
      {"%X = @strlen(@HASH(1G))", "第2个字符不是16进制字符，请检查！"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(RunOne(row.statement), (Outcome{0, row.value})) << row.statement;
  }
}

TEST_F(ProviderCalls, ResultsAreShapedAndNeverTrusted) {
  constexpr std::int64_t kTrue = SIMULATOR_TRUE_LENGTH;
  struct Row {
    const char* entry;
    std::int64_t result;
    std::string data;
    std::int64_t length;
    const char* command;
    std::string value;  // of "AA command BB"
  };
  const char* const des = "@des(%K8,11,1)";
  const char* const cbc = "@descbc(%K8,11,22,0)";
  const char* const mac = "@mac(%K8,11,22,0)";
  const char* const shortMac = "@mac(%K8,11,22,1)";
  const char* const sub = "@SUBKEY(%K8,11)";
  const char* const hash = "@HASH(11)";
  const char* const rsa = "@RSAPUBENC(CA1,11,41)";
  const std::string kFailed = "AABB";
  const std::string kRsaFailed = "AARSA加密失败BB";
  const Row rows[] = {
      {"CryptoBlockFlagged", 0, "C1C2C3", kTrue, des, "AAC1C2C3BB"},
      {"CryptoBlockFlagged", 1, "", 0, "@strlen(@des(%K8,11,1))", "AA0BB"},
      {"CryptoBlockFlagged", 1, "C1", 3, des, "AAC10000BB"},
      {"CryptoBlockFlagged", 1, "C1", -1, des, kFailed},
      {"CryptoBlockFlagged", 1, "C1", INT32_MIN, des, kFailed},
      {"CryptoBlockFlagged", 1, "C1", 257, des, kFailed},
      {"CryptoBlockFlagged", 1, "C1", INT32_MAX, des, kFailed},
      {"CryptoBlockFlagged", 1, "C1", RECORDING_SETS_NO_LENGTH, des, kFailed},
      {"CryptoBlockFlagged", 1, Digits(256), kTrue, "@strlenh(@des(%K8,11,1))", "AA256BB"},
      {"CryptoBlockDefault", 0, "C1C2C3", kTrue, cbc, "AAC1C2C3BB"},
      {"CryptoBlockDefault", 1, "C1", 257, cbc, kFailed},
      {"CryptoBlockDefault", 1, "C1", RECORDING_SETS_NO_LENGTH, cbc, kFailed},
      {"CryptoSubKey", 0, "C1C2C3", kTrue, sub, "AAC1C2C3BB"},
      {"CryptoSubKey", 1, "C1", -1, sub, kFailed},
      {"CryptoSubKey", 1, "C1", 257, sub, kFailed},
      {"CryptoSubKey", 1, "C1", RECORDING_SETS_NO_LENGTH, sub, kFailed},
      {"CryptoMac", 0, "C1C2C3C4C5", kTrue, mac, "AAC1C2C3C4C5BB"},
      {"CryptoMac", 0, "C1C2C3C4C5", kTrue, shortMac, "AAC1C2C3C4BB"},
      {"CryptoMac", 0, "C1C2C3", kTrue, shortMac, "AAC1C2C3BB"},
      {"CryptoMac", 0, "C1C2C3C4C5", kTrue, "@mac(%K8,11,22,11)", "AAC1C2C3C4C5BB"},
      {"CryptoMac", 1, "C1", -1, mac, kFailed},
      {"CryptoMac", 1, "C1", 257, shortMac, kFailed},
      {"CryptoMac", 1, "C1", RECORDING_SETS_NO_LENGTH, "@strlen(@mac(%K8,11,22,0))", "AA0BB"},
      {"CryptoHash", 256, "C1C2C3", kTrue, hash, "AAC1C2C3BB"},  // all but 0 is success
      {"CryptoHash", 0, "C1C2C3", kTrue, hash, kFailed},
      {"CryptoHash", 1, "C1", -1, hash, kFailed},
      {"CryptoHash", 1, "C1", 4097, hash, kFailed},
      {"CryptoHash", 1, Digits(4096), kTrue, "@strlenh(@HASH(11))", "AA4096BB"},
      {"CryptoHash", 1, "C1", RECORDING_SETS_NO_LENGTH, "@strlen(@HASH(11))", "AA0BB"},
      {"CryptoHash", 1, "C1C2", RECORDING_POINTS_ELSEWHERE, hash, "AA0000BB"},
      {"CryptoRsaPublic", 0, "3143", kTrue, rsa, kRsaFailed},
      {"CryptoRsaPublic", 1, "", RECORDING_NULL_TEXT, rsa, kRsaFailed},
      {"CryptoRsaPublic", 256, "303061304700", kTrue, rsa, "AAa0GBB"},
      {"CryptoRsaPublic", 1, "3030", kTrue, "@strlen(@RSAPUBENC(CA1,11,41))", "AA0BB"},
      {"CryptoRsaPublic", 1, "", kTrue, "@strlen(@RSAPUBENC(CA1,11,41))", "AA0BB"},
  };
  for (const Row& row : rows) {
    provider_.restart();
    provider_.answer(row.entry, row.result, row.data.c_str(), row.length);
    EXPECT_EQ(RunOne(std::string("%X = AA ") + row.command + " BB"), (Outcome{0, row.value}))
        << "row " << &row - rows;
  }
}

TEST_F(ProviderCalls, Nest) {
  provider_.answer("CryptoSubKey", 1, "C1C2C3C4C5C6C7C8", SIMULATOR_TRUE_LENGTH);
  EXPECT_EQ(RunOne("@mac(@SUBKEY(%K8,11),@HASH(22),%NONE,0)"), (Outcome{1, "A1B2"}));
  EXPECT_STREQ(provider_.journal(),
               "CryptoSubKey(\"0123456789ABCDEF/8\", \"11/1\", 0) = 1 C1C2C3C4C5C6C7C8\n"
               "CryptoHash(\"22/1\", 0, 0) = 1 A1B2\n"
               "CryptoMac(\"C1C2C3C4C5C6C7C8/8\", \"A1B2/2\", \"/0\", \"0\", 0) = 1 A1B2\n");
}

}  // namespace
}  // namespace orvane_test
