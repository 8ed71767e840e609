// Known answers of the default provider, asked through the commands. Where no standard is named,
// the answer was computed with OpenSSL 3.0, which also confirms all others.
#include "crypto/default_provider.h"

#include <gtest/gtest.h>

#include "engine/script_host.h"

namespace orvane_test {
namespace {

constexpr char kKey8[] = "0123456789ABCDEF";
constexpr char kKey16[] = "0123456789ABCDEFFEDCBA9876543210";
constexpr char kKey24[] = "0123456789ABCDEF23456789ABCDEF01456789ABCDEF0123";
constexpr char kWeakKey8[] = "0101010101010101";
constexpr char kWeakKey24[] = "010101010101010101010101010101010101010101010101";
constexpr char kIv[] = "1234567890ABCDEF";
constexpr char kNowIsTheTimeForAll[] = "4E6F77206973207468652074696D6520666F7220616C6C20";
constexpr char kNowIsTheTimeForIt[] = "4E6F77206973207468652074696D6520666F72206974";
constexpr char kTheQuickBrownFox[] = "54686520717566636B2062726F776E20666F78206A756D70";

// An argument can't be the empty text itself.
std::string Argument(const std::string& text) { return text.empty() ? "%NONE" : text; }

TEST(DefaultProvider, TurnsBlocksBothWays) {
  const struct {
    const char* source;
    const char* key;
    const char* iv;  // null for ECB
    std::string plain;
    const char* cipher;
  } rows[] = {
      {"FIPS 81, ECB", kKey8, nullptr, kNowIsTheTimeForAll,
       "3FA40E8A984D48156A271787AB8883F9893D51EC4B563B53"},
      {"FIPS 81, CBC", kKey8, kIv, kNowIsTheTimeForAll,
       "E5C7CDDE872BF27C43E934008C389C0F683788499A7C05F6"},
      {"SP 800-17", kWeakKey8, nullptr, "8000000000000000", "95F8A5E5DD31D900"},
      {"SP 800-20", kWeakKey24, nullptr, "8000000000000000", "95F8A5E5DD31D900"},
      {"SP 800-67, ECB", kKey24, nullptr, kTheQuickBrownFox,
       "A826FD8CE53B855FCCE21C8112256FE668D5C05DD9B6B900"},
      {"SP 800-67's key and text, CBC", kKey24, "F69F2445DF4F9B17", kTheQuickBrownFox,
       "A5C282BAD0DE3774BECD2E04386B589FB5057D8552FC4336"},
      {"two keys, ECB", kKey16, nullptr, kNowIsTheTimeForAll,
       "D80A0D8B2BAE5E4E6A0094171ABCFC2775D2235A706E232C"},
      {"two keys, CBC", kKey16, kIv, kNowIsTheTimeForAll,
       "F85D4AB92066789E1D0430671F28AE7AB9627D35385D2E24"},
      {"semi-weak key", "01FE01FE01FE01FE", nullptr, "0000000000000000", "01DB63B42A6B7260"},
      {"no octets", kKey8, nullptr, "", ""},
      {"no octets, CBC", kKey24, kIv, "", ""},
      {"filled", kKey8, nullptr, "1122334455", "A15772642E11DBA9"},
      {"filled, no initial value", kKey8, "", "1122334455", "A15772642E11DBA9"},
      {"filled, short initial value", kKey16, "1234", "1122334455", "1C50B98210D8E2B1"},
      {"filled, long initial value", kKey8, "123400000000000055", "1122334455", "A4CC18ECE20E8D7A"},
  };
  SetVarValue("%NONE", "");
  for (const auto& row : rows) {
    const auto statement = [&](const std::string& data, const char* flag) {
      const std::string iv = row.iv ? Argument(row.iv) + "," : "";
      return (row.iv ? "@descbc(" : "@des(") + std::string(row.key) + "," + Argument(data) + "," +
             iv + flag + ")";
    };
    const std::size_t blocks = (row.plain.size() + 15) / 16;
    const std::string whole = row.plain + std::string(16 * blocks - row.plain.size(), '0');
    EXPECT_EQ(RunOne(statement(row.plain, "1")), (Outcome{1, row.cipher})) << row.source;
    EXPECT_EQ(RunOne(statement(row.cipher, "0")), (Outcome{1, whole})) << row.source;
  }
}

TEST(DefaultProvider, ComputesMacs) {
  const struct {
    const char* source;
    const char* key;
    const char* data;
    const char* iv;
    std::string mac;
  } rows[] = {
      {"ISO/IEC 9797-1, algorithm 1", kKey8, kNowIsTheTimeForAll, "", "10E1F0F108341B6D"},
      {"ISO/IEC 9797-1, algorithm 1", kKey8, kNowIsTheTimeForIt, "", "A924C72136149211"},
      {"ISO/IEC 9797-1, algorithm 3", kKey16, kNowIsTheTimeForAll, "", "E9086230CA3BE796"},
      {"ISO/IEC 9797-1, algorithm 3", kKey16, kNowIsTheTimeForIt, "", "5A692CE64F404145"},
      {"three keys", kKey24, kNowIsTheTimeForIt, "", "50DC3D0E8F3ECC94"},
      {"initial value", kKey8, kNowIsTheTimeForAll, kIv, "CFB7C7640E7CD9A7"},
      {"initial value", kKey24, kNowIsTheTimeForIt, kIv, "3ED194D7A28828F1"},
      {"short initial value", kKey16, kNowIsTheTimeForAll, "1234", "8B6DC3ED773CF0E9"},
      {"long initial value", kKey16, kNowIsTheTimeForAll, "12340000000000005555",
       "8B6DC3ED773CF0E9"},
      {"no octets", kKey8, "", "", "CAEE534C523E1E79"},
      {"one octet less than a block", kKey16, "4E6F7720697320", "", "72B8E81E1463770B"},
      {"weak key", kWeakKey8, kNowIsTheTimeForAll, "", "A92C8308D0D2474C"},
      {"weak keys", kWeakKey24, kNowIsTheTimeForAll, "", "A92C8308D0D2474C"},
  };
  SetVarValue("%NONE", "");
  for (const auto& row : rows) {
    const std::string statement =
        std::string("@mac(") + row.key + "," + Argument(row.data) + "," + Argument(row.iv) + ",";
    EXPECT_EQ(RunOne(statement + "0)"), (Outcome{1, row.mac})) << row.source;
    EXPECT_EQ(RunOne(statement + "1)"), (Outcome{1, row.mac.substr(0, 8)})) << row.source;
  }
}

TEST(DefaultProvider, DerivesSubKeysAndHashes) {
  std::string most;
  for (int i = 0; i < 4096; ++i) most += "61";
  const struct {
    std::string statement;
    const char* result;
  } rows[] = {
      {"@SUBKEY(%K8,1122334455667788)", "B4CC3FD9D8D95214"},
      {"@SUBKEY(%K16,1122334455667788)", "3EB3B72576BBBE831355AB0EE3123AE8"},
      {"@SUBKEY(%K24,1122334455667788)", "88BE354D2E0B286985BD578C1C820744"},
      {"@SUBKEY(%K16,112233)", "F651BE927008A02D9C03986FEB1189A4"},
      {"@SUBKEY(%K16,112233445566778899)", "3EB3B72576BBBE831355AB0EE3123AE8"},
      {"@SUBKEY(%K24,%NONE)", "4EBA739C998BCB60FDA5E1AB2024B229"},
      {"@HASH(616263)", "A9993E364706816ABA3E25717850C26C9CD0D89D"},  // FIPS 180, "abc"
      {"@HASH(ab c)", "EAF13BD63F3ED1B608E609807A7B65958C6819A6"},    // an odd digit is a high half
      {"@HASH(" + most + ")", "8C51FB6A0B587EC95CA74ACFA43DF7539B486297"},
  };
  SetVarValue("%NONE", "");
  SetVarValue("%K8", kKey8);
  SetVarValue("%K16", kKey16);
  SetVarValue("%K24", kKey24);
  for (const auto& row : rows) {
    EXPECT_EQ(RunOne(row.statement), (Outcome{1, row.result})) << row.statement.substr(0, 40);
  }
}

TEST(DefaultProvider, EncryptsWithPublicKeys) {
  const std::string ones(512, 'F'), zeros(256, '0');
  const struct {
    std::string modulus;
    const char* exponent;
    std::string data;
    std::string result;
  } rows[] = {
      {"0CA1", "11", "41", "0AE6"},  // 65 to the power of 17, modulo 61 * 53
      {"000ca1", "0011", "0041", "0AE6"},
      {"CA1", "0", "41", "0001"},
      {"CA1", "11", "0", "0000"},
      {"1", "11", "0", "00"},
      {"FF", "1", "FE", "FE"},
      {"10", "3", "3", "0B"},  // an even modulus
      // The square of 2 to the power of 1,025, modulo 2 to the power of 2,048 less 1.
      {ones, "2", "2" + zeros, std::string(511, '0') + "4"},
      // A key of openssl genrsa, with what openssl pkeyutl gives without padding.
      {"C97FC99B7B9B1ABC57244B02AD53DC4ADC63CB7610646661A29B15F03B344013F3C7E9D6270DF76A781A"
       "0D195D09F47CFDAC813FF279B794ED01AD723F2555098FC48B9BBDB1F30D771C75E16F026BA6A5180FD6"
       "7B59EF5388DCB72B612CD7DC8094F4536E5620F8D9655AB634C62E50A94BB6C9F0A136ED96BDF74128FC"
       "5CF3",
       "10001",
       "00000000CF54A1EC9133B6A7157E8A2B828B8B357A3A0E00825725FEABBAB95C37DD8D6346DA86546A90"
       "6D4D90FEFA2EAE53455BD3663ADDF0145C4464068F2CE0BBDA357EE1BA25D62BA3ABFB4510758C88DADA"
       "DFB18EBF7D2743EF398047DB436390C1D04D959CF23CD8AA18B353CAEF4495A0FBFB5B55F190FD0DDA30"
       "F00A",
       "494C7984A42243E08EC00ECAEB1ED5914C8C904AB131D980DAC76FE2121E693B53A2DC196D0ED718EF0E"
       "4186DF89D89631B74C5790D154BDF34F8705076BDB883F4818538FFB54608148DE94DA00D6873B78714E"
       "404D1DF5F32BB6731E7DF9A9E37D4A00A98E3A18008A4B48E0E62137510EA22462702710137383282DC9"
       "1C21"},
  };
  for (const auto& row : rows) {
    const char* result = nullptr;
    const auto entry = kDefaultProvider.CryptoRsaPublic;
    ASSERT_EQ(entry(row.modulus.c_str(), row.exponent, row.data.c_str(), &result, 0), 1)
        << row.modulus;
    EXPECT_EQ(result, row.result);

    SetVarValue("%MODULUS", row.modulus.c_str());
    SetVarValue("%DATA", row.data.c_str());
    const std::string digits =
        row.result.substr(std::min(row.result.find_first_not_of('0'), row.result.size()));
    const auto call = std::string("@RSAPUBENC(%MODULUS,") + row.exponent + ",%DATA)";
    EXPECT_EQ(RunOne(call), (Outcome{1, digits})) << row.modulus;
  }
}

}  // namespace
}  // namespace orvane_test
