// What no command hands over to the default provider, but another caller might.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <vector>

#include "crypto/default_provider.h"
#include "orvane.h"

namespace orvane_test {
namespace {

constexpr char kKey8[] = "0123456789ABCDEF";
constexpr char kKey16[] = "0123456789ABCDEFFEDCBA9876543210";
constexpr char kKey32[] = "0123456789ABCDEF0123456789ABCDEF0123456789ABCDEF0123456789ABCDEF";
constexpr char kRefused[] = "refused";

std::int32_t Size(const std::vector<std::uint8_t>& octets) {
  return static_cast<std::int32_t>(octets.size());
}

std::string ToHex(const std::uint8_t* octets, std::int32_t count) {
  std::string hex(static_cast<std::size_t>(2 * count), '\0');
  HexToAscii(octets, hex.data(), count);
  return hex;
}

// An octet string in memory of just its size, so that the sanitizers see it read too far. The
// count is the true one unless another is told.
struct Handed {
  Handed(const std::string& hex = "") : octets(hex.size() / 2), count(Size(octets)) {
    AsciiToHex(hex.c_str(), octets.data(), static_cast<std::int32_t>(hex.size()));
  }
  Handed(const char* hex) : Handed(std::string(hex)) {}
  Handed(const char* hex, std::int32_t told) : Handed(hex) { count = told; }

  std::vector<std::uint8_t> octets;
  std::int32_t count;
};

enum class Entry { kEncrypt, kDecrypt, kMac, kSubKey };
using enum Entry;

// The result in hexadecimal, or kRefused for a call that is refused as it should be: with 0, the
// length -1 and the output area as it was.
std::string Call(Entry entry, std::int32_t mode, const Handed& key, const Handed& data,
                 const Handed& iv = {}) {
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
  EXPECT_EQ(returned, length == -1 ? 0 : 1);
  const auto written = std::clamp(length, 0, 256);
  EXPECT_TRUE(std::all_of(output + written, output + 256, [](int c) { return c == 0; }));
  return length == -1 ? kRefused : ToHex(output, written);
}

TEST(OddInputs, ThatMakeNoSenseAreRefused) {
  constexpr std::int32_t kLeast = INT32_MIN;
  for (const Entry entry : {kEncrypt, kDecrypt, kMac, kSubKey}) {
    for (const Handed& key :
         {Handed(), Handed("", -8), Handed("", 8), Handed("01234567"), Handed(kKey16)}) {
      EXPECT_EQ(Call(entry, 0, key, "00"), kRefused) << key.count;
    }
    for (const char* key : {kKey8, "0123456789ABCDEF01", kKey32})
      EXPECT_EQ(Call(entry, 1, key, "00"), kRefused) << key;
    for (const Handed& data : {Handed("00", -1), Handed("00", kLeast), Handed("", 1)})
      EXPECT_EQ(Call(entry, 0, kKey8, data), kRefused) << data.count;
    for (const std::int32_t mode : {2, 5, -1, kLeast, INT32_MAX})
      EXPECT_EQ(Call(entry, mode, kKey8, "00"), kRefused) << mode;
    const bool turnsBlocks = entry == kEncrypt || entry == kDecrypt;
    const std::string single = Call(entry, 3, kKey8, "00"), triple = Call(entry, 4, kKey16, "00");
    EXPECT_EQ(single != kRefused && triple != kRefused, turnsBlocks);
    EXPECT_EQ(single == kRefused && triple == kRefused, !turnsBlocks);
    if (entry == kSubKey) continue;
    for (const Handed& iv : {Handed("00", -1), Handed("", 8)})
      EXPECT_EQ(Call(entry, turnsBlocks ? 3 : 0, kKey8, "00", iv), kRefused);
    if (entry == kMac) continue;
    EXPECT_EQ(Call(entry, 4, kKey8, "00"), kRefused);
    EXPECT_EQ(Call(entry, 3, kKey16, "00"), kRefused);
    EXPECT_EQ(Call(entry, 0, kKey8, std::string(2 * 257, '0')), kRefused);
  }
}

TEST(OddInputs, AreFilledAndNeverReadOrWrittenTooFar) {
  EXPECT_EQ(Call(kEncrypt, 4, kKey16, "1122334455", "1234"), "1C50B98210D8E2B1");
  EXPECT_EQ(Call(kDecrypt, 0, kKey8, "1122334455"), "AC105DD42932BEDD");
  const std::string most(2 * 256, '0'), longText(2 * 100003, '0'), less = "112233";
  for (const Entry entry : {kEncrypt, kDecrypt}) {
    EXPECT_EQ(Call(entry, 3, kKey8, most).size(), most.size());
    EXPECT_EQ(Call(entry, 0, kKey8, Handed(most.c_str(), 249)).size(), most.size());
  }
  for (const std::string& data : {longText, less}) {
    EXPECT_EQ(Call(kMac, 1, kKey16, data).size(), 16u);
    EXPECT_EQ(Call(kSubKey, 1, kKey16, data).size(), 32u);
  }
}

TEST(OddInputs, NoPlaceForTheResult) {
  std::uint8_t area[256] = {};
  std::uint8_t* nowhere = nullptr;
  std::int32_t length = 0;
  const CryptoProvider& provider = kDefaultProvider;
  EXPECT_EQ(provider.CryptoMac(area, 8, area, 1, nullptr, 0, area, nullptr, 0), 0);
  EXPECT_EQ(provider.CryptoMac(area, 8, area, 1, nullptr, 0, nullptr, &length, 0), 0);
  EXPECT_EQ(length, -1);
  EXPECT_EQ(provider.CryptoHash(area, 1, nullptr, 0, &length), 0);
  EXPECT_EQ(provider.CryptoHash(area, 1, &nowhere, 0, &length), 0);
  EXPECT_EQ(provider.CryptoRsaPublic("CA1", "11", "41", nullptr, 0), 0);
}

TEST(OddInputs, HashTakesAnyLength) {
  const std::vector<std::uint8_t> million(1000000, 'a');
  const struct {
    const std::uint8_t* data;
    std::int32_t count;
    std::string digest;
  } rows[] = {{nullptr, 0, "DA39A3EE5E6B4B0D3255BFEF95601890AFD80709"},
              {million.data(), 1000000, "34AA973CD4C4DAA4F61EEB2BDBAD27316534016F"},  // FIPS 180
              {million.data(), -1, ""},
              {nullptr, 1, ""}};
  for (const auto& row : rows) {
    std::uint8_t area[4096];
    std::uint8_t* output = area;
    std::int32_t length = 0;
    EXPECT_EQ(kDefaultProvider.CryptoHash(row.data, row.count, &output, 0, &length),
              row.digest.empty() ? 0 : 1);
    EXPECT_EQ(ToHex(output, std::max(length, 0)), row.digest);
    EXPECT_EQ(output, area);
  }
}

TEST(OddInputs, RsaRefusesWhatIsNoNumberOrTooLarge) {
  const std::string longest(4096, 'F');  // digits: 16,384 bits
  const std::string zeros(1 << 20, '0');
  const std::string tooLong = longest + "F";
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
