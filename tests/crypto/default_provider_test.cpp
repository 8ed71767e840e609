// Known answers of the default provider, asked through the commands but for RSA; then what no
// command hands over to it, but another caller might. Where no standard
// is named, the answer was computed with OpenSSL 3.0, which also confirms all others.
#include "crypto/default_provider.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <tuple>
#include <vector>

#include "engine/script_host.h"

namespace orvane_test {
namespace {

class DefaultProvider : public testing::Test {
 protected:
  void SetUp() override {
    const char* const variables[][2] = {
        {"%NONE", ""},
        {"%K8", "0123456789ABCDEF"},
        {"%K16", "0123456789ABCDEFFEDCBA9876543210"},
        {"%K24", "0123456789ABCDEF23456789ABCDEF01456789ABCDEF0123"},
        {"%WEAK", "010101010101010101010101010101010101010101010101"},
        {"%IV", "1234567890ABCDEF"},
        {"%ALL", "4E6F77206973207468652074696D6520666F7220616C6C20"},  // Now is the time for all
        {"%FOX", "54686520717566636B2062726F776E20666F78206A756D70"}};
    for (const auto& [name, value] : variables) SetVarValue(name, value);
  }
};

TEST_F(DefaultProvider, TurnsBlocksBothWays) {
  // The source; the key and what stands behind it, the plain text, the same of the iv, the cipher.
  const std::tuple<const char*, std::string, std::string, std::string, const char*> rows[] = {
      {"FIPS 81, ECB", "des(%K8,", "%ALL", "", "3FA40E8A984D48156A271787AB8883F9893D51EC4B563B53"},
      {"FIPS 81, CBC", "descbc(%K8,", "%ALL", "%IV,",
       "E5C7CDDE872BF27C43E934008C389C0F683788499A7C05F6"},
      {"SP 800-17", "des(0101010101010101,", "8000000000000000", "", "95F8A5E5DD31D900"},
      {"SP 800-20", "des(%WEAK,", "8000000000000000", "", "95F8A5E5DD31D900"},
      {"SP 800-67, ECB", "des(%K24,", "%FOX", "",
       "A826FD8CE53B855FCCE21C8112256FE668D5C05DD9B6B900"},
      {"SP 800-67's key and text, CBC", "descbc(%K24,", "%FOX", "F69F2445DF4F9B17,",
       "A5C282BAD0DE3774BECD2E04386B589FB5057D8552FC4336"},
      {"two keys, CBC", "descbc(%K16,", "%ALL", "%IV,",
       "F85D4AB92066789E1D0430671F28AE7AB9627D35385D2E24"},
      {"no octets", "des(%K8,", "%NONE", "", ""},
      {"no octets, CBC", "descbc(%K24,", "%NONE", "%IV,", ""},
      {"filled", "des(%K8,", "1122334455", "", "A15772642E11DBA9"},
      {"short initial value", "descbc(%K16,", "1122334455", "1234,", "1C50B98210D8E2B1"},
      {"long one", "descbc(%K8,", "1122334455", "123400000000000055,", "A4CC18ECE20E8D7A"},
  };
  for (const auto& [source, keyAnd, plain, ivAnd, cipher] : rows) {
    EXPECT_EQ(RunOne("%C = @" + keyAnd + plain + "," + ivAnd + "1)"), (Outcome{0, cipher}))
        << source;
    const std::string zeros = plain == "1122334455" ? " 000000" : "";
    EXPECT_EQ(RunOne("@" + keyAnd + "%C," + ivAnd + "0)"), (Outcome{1, RunOne(plain + zeros).text}))
        << source;
  }
}

TEST_F(DefaultProvider, ComputesMacsSubKeysAndHashes) {
  SetVarValue("%IT", "4E6F77206973207468652074696D6520666F72206974");
  std::string most;
  for (int i = 0; i < 4096; ++i) most += "61";
  SetVarValue("%MOST", most.c_str());
  const char* const rows[][2] = {
      {"@mac(%K8,%ALL,%NONE,0)", "10E1F0F108341B6D"},   // ISO/IEC 9797-1, algorithm 1
      {"@mac(%K8,%IT,%NONE,0)", "A924C72136149211"},    // the same
      {"@mac(%K16,%ALL,%NONE,0)", "E9086230CA3BE796"},  // algorithm 3
      {"@mac(%K24,%IT,%NONE,0)", "50DC3D0E8F3ECC94"},
      {"@mac(%K8,%ALL,%IV,0)", "CFB7C7640E7CD9A7"},
      {"@mac(%K24,%IT,%IV,0)", "3ED194D7A28828F1"},
      {"@mac(%K16,%ALL,1234,0)", "8B6DC3ED773CF0E9"},
      {"@mac(%K16,%ALL,12340000000000005555,0)", "8B6DC3ED773CF0E9"},
      {"@mac(%K8,%NONE,%NONE,0)", "CAEE534C523E1E79"},
      {"@mac(%K16,4E6F7720697320,%NONE,1)", "72B8E81E"},
      {"@mac(%WEAK,%ALL,%NONE,0)", "A92C8308D0D2474C"},
      {"@SUBKEY(%K8,1122334455667788)", "B4CC3FD9D8D95214"},
      {"@SUBKEY(%K24,1122334455667788)", "88BE354D2E0B286985BD578C1C820744"},
      {"@SUBKEY(%K16,112233)", "F651BE927008A02D9C03986FEB1189A4"},
      {"@SUBKEY(%K16,112233445566778899)", "3EB3B72576BBBE831355AB0EE3123AE8"},
      {"@SUBKEY(%K24,%NONE)", "4EBA739C998BCB60FDA5E1AB2024B229"},
      {"@HASH(ab c)", "EAF13BD63F3ED1B608E609807A7B65958C6819A6"},  // an odd digit is a high half
      {"@HASH(%MOST)", "8C51FB6A0B587EC95CA74ACFA43DF7539B486297"},
  };
  for (const auto& [statement, result] : rows) {
    EXPECT_EQ(RunOne(statement), (Outcome{1, result})) << statement;
  }
}

TEST_F(DefaultProvider, EncryptsWithPublicKeys) {
  const std::string ones(512, 'F'), zeros(256, '0');
  const std::tuple<std::string, const char*, std::string, std::string> rows[] = {
      {"000ca1", "0011", "0041", "0AE6"},  // 65 to the power of 17, modulo 61 * 53
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
  const auto entry = kDefaultProvider.CryptoRsaPublic;
  for (const auto& [modulus, exponent, data, expected] : rows) {
    const char* result = nullptr;
    ASSERT_EQ(entry(modulus.c_str(), exponent, data.c_str(), &result, 0), 1) << modulus;
    EXPECT_EQ(result, expected);
  }
}

constexpr char kKey8[] = "0123456789ABCDEF", kKey16[] = "0123456789ABCDEFFEDCBA9876543210";
constexpr std::int32_t kRefused = -1;

// An octet string in memory of just its size, so that the sanitizers see it read too far. The
// count is the true one unless another is told.
struct Handed {
  Handed(const std::string& hex)
      : octets(hex.size() / 2), count(static_cast<std::int32_t>(octets.size())) {
    AsciiToHex(hex.c_str(), octets.data(), static_cast<std::int32_t>(hex.size()));
  }
  Handed(const char* hex) : Handed(std::string(hex)) {}
  Handed(const char* hex, std::int32_t told) : Handed(hex) { count = told; }

  std::vector<std::uint8_t> octets;
  std::int32_t count;
};

enum Entry { kEncrypt, kDecrypt, kMac, kSubKey };

// The result's length, or kRefused for a call that is refused as it should be: with 0 and the
// output area as it was.
std::int32_t Call(Entry entry, std::int32_t mode, const Handed& key, const Handed& data,
                  const Handed& iv = "") {
  std::uint8_t output[256] = {};
  std::int32_t length = 4711;
  const CryptoProvider& provider = kDefaultProvider;
  const auto run = entry == kEncrypt ? provider.CryptoBlockFlagged : provider.CryptoBlockDefault;
  const std::uint8_t *k = key.octets.data(), *d = data.octets.data(), *i = iv.octets.data();
  const int returned =
      entry == kMac
          ? provider.CryptoMac(k, key.count, d, data.count, i, iv.count, output, &length, mode)
      : entry == kSubKey ? provider.CryptoSubKey(k, key.count, d, data.count, output, &length, mode)
                         : run(i, iv.count, k, key.count, d, data.count, output, &length, mode);
  EXPECT_EQ(returned, length == kRefused ? 0 : 1);
  EXPECT_TRUE(
      std::all_of(output + std::max(length, 0), output + 256, [](int c) { return c == 0; }));
  return length;
}

TEST(OddInputs, ThatMakeNoSenseAreRefused) {
  const std::string longText(2 * 100003, '0');
  for (const Entry entry : {kEncrypt, kDecrypt, kMac, kSubKey}) {
    const bool turnsBlocks = entry == kEncrypt || entry == kDecrypt;
    for (const Handed& key :
         {Handed(""), Handed("", -8), Handed("", 8), Handed("01234567"), Handed(kKey16)})
      EXPECT_EQ(Call(entry, 0, key, "00"), kRefused) << key.count;
    for (const std::string key :
         {kKey8, "0123456789ABCDEF01",
          "0123456789ABCDEF0123456789ABCDEF0123456789ABCDEF0123456789ABCDEF"})
      EXPECT_EQ(Call(entry, 1, key, "00"), kRefused) << key;
    for (const Handed& data : {Handed("00", -1), Handed("00", INT32_MIN), Handed("", 1)})
      EXPECT_EQ(Call(entry, 0, kKey8, data), kRefused) << data.count;
    for (const std::int32_t mode : {2, 5, -1, INT32_MIN, INT32_MAX})
      EXPECT_EQ(Call(entry, mode, kKey8, "00"), kRefused) << mode;
    EXPECT_EQ(Call(entry, 3, kKey8, "00"), turnsBlocks ? 8 : kRefused);
    EXPECT_EQ(Call(entry, 4, kKey16, "00"), turnsBlocks ? 8 : kRefused);
    EXPECT_EQ(Call(entry, 4, kKey8, "00"), kRefused);
    EXPECT_EQ(Call(entry, 3, kKey16, "00"), kRefused);
    for (const Handed& iv : {Handed("00", -1), Handed("", 8)})
      EXPECT_EQ(Call(entry, turnsBlocks ? 3 : 0, kKey8, "00", iv), entry == kSubKey ? 8 : kRefused);
    EXPECT_EQ(Call(entry, 0, kKey8, longText), turnsBlocks ? kRefused : 8);
    EXPECT_EQ(Call(entry, 0, kKey8, longText.substr(0, 2 * 249)), turnsBlocks ? 256 : 8);
  }
}

TEST(OddInputs, NoPlaceForTheResult) {
  std::uint8_t area[256] = {};
  std::uint8_t *nowhere = nullptr, *somewhere = area;
  std::int32_t length = 0;
  const CryptoProvider& provider = kDefaultProvider;
  EXPECT_EQ(provider.CryptoMac(area, 8, area, 1, nullptr, 0, area, nullptr, 0), 0);
  EXPECT_EQ(provider.CryptoMac(area, 8, area, 1, nullptr, 0, nullptr, &length, 0), 0);
  EXPECT_EQ(length, kRefused);
  EXPECT_EQ(provider.CryptoHash(area, 1, nullptr, 0, &length), 0);
  EXPECT_EQ(provider.CryptoHash(area, 1, &nowhere, 0, &length), 0);
  EXPECT_EQ(provider.CryptoHash(area, -1, &somewhere, 0, &length), 0);
  EXPECT_EQ(provider.CryptoHash(nullptr, 1, &somewhere, 0, &length), 0);
  EXPECT_EQ(provider.CryptoHash(nullptr, 0, &somewhere, 0, &length), 1);
  EXPECT_EQ(area[0], 0xDA);  // the digest of nothing begins with it
  EXPECT_EQ(provider.CryptoRsaPublic("CA1", "11", "41", nullptr, 0), 0);
}

TEST(OddInputs, RsaRefusesWhatIsNoNumberOrTooLarge) {
  const std::string longest(4096, 'F');  // digits: 16,384 bits
  const std::string tooLong = longest + "F", zeros(1 << 20, '0');
  const char *const n = "CA1", *const e = "11", *const m = "41", *const most = longest.c_str();
  std::vector<std::array<const char*, 3>> rows = {
      {"0000", e, "0"}, {n, e, "CA1"}, {n, e, "CA2"}, {most, e, most}};
  for (const char* none : {"", "CAG", "1-", "0x41", "-CA1", "CA 1", "\xC3\x84", tooLong.c_str(),
                           static_cast<const char*>(nullptr)})
    rows.insert(rows.end(), {{none, e, m}, {n, none, m}, {n, e, none}});
  const auto entry = kDefaultProvider.CryptoRsaPublic;
  const char* result = nullptr;
  for (const auto& row : rows)
    EXPECT_EQ(entry(row[0], row[1], row[2], &result, 0), 0) << &row - rows.data();
  EXPECT_EQ(result, nullptr);
  ASSERT_EQ(entry((zeros + longest).c_str(), "1", "AB", &result, 0), 1);
  EXPECT_EQ(result, std::string(4094, '0') + "AB") << "leading zeros are no part of the length";
}

}  // namespace
}  // namespace orvane_test
