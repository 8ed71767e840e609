// What no command hands over, but another caller of the module might.
#include <gtest/gtest.h>

#include <cstring>

#include "crypto/default_provider.h"

namespace orvane_test {
namespace {

constexpr char kKey8[] = "0123456789ABCDEF";
constexpr char kKey16[] = "0123456789ABCDEFFEDCBA9876543210";
constexpr Handed kNoIv = {nullptr, 0};

TEST(OddInputs, AreRefusedByEveryEntryWithAKey) {
  const KeyCall calls[] = {
      {{""}, {"00"}, kNoIv, 0},
      {{"", -8}, {"00"}, kNoIv, 0},
      {{nullptr, 8}, {"00"}, kNoIv, 0},
      {{"01234567"}, {"00"}, kNoIv, 0},
      {{"0123456789ABCDEF01"}, {"00"}, kNoIv, 1},
      {{"0123456789ABCDEF0123456789ABCDEF0123456789ABCDEF01"}, {"00"}, kNoIv, 1},
      {{"0123456789ABCDEF0123456789ABCDEF0123456789ABCDEF0123456789ABCDEF"}, {"00"}, kNoIv, 1},
      {{kKey8}, {"00", -1}, kNoIv, 0},
      {{kKey8}, {"00", INT32_MIN}, kNoIv, 0},
      {{kKey8}, {nullptr, 1}, kNoIv, 0},
      {{kKey8}, {"00"}, kNoIv, 2},
      {{kKey8}, {"00"}, kNoIv, 5},
      {{kKey8}, {"00"}, kNoIv, -1},
      {{kKey8}, {"00"}, kNoIv, INT32_MIN},
      {{kKey8}, {"00"}, kNoIv, INT32_MAX},
      {{kKey8}, {"00"}, kNoIv, 1},  // the mode of a longer key
      {{kKey16}, {"00"}, kNoIv, 0},
  };
  for (const KeyCall& call : calls) {
    for (const KeyEntry entry : {Encrypt, Decrypt, Mac, SubKey}) {
      EXPECT_EQ(entry(call), kRefused) << "row " << &call - calls;
    }
  }
}

TEST(OddInputs, AreRefusedWhereTheyMatter) {
  for (const KeyEntry entry : {Encrypt, Decrypt, Mac}) {
    for (const Handed& iv : {Handed{"00", -1}, Handed{nullptr, 8}}) {
      EXPECT_EQ(entry({{kKey8}, {"00"}, iv, entry == &Mac ? 0 : 3}), kRefused);
    }
  }
  for (const KeyEntry entry : {Encrypt, Decrypt}) {
    EXPECT_EQ(entry({{kKey8}, {"00"}, kNoIv, 4}), kRefused) << "the mode of a longer key";
    EXPECT_EQ(entry({{kKey16}, {"00"}, kNoIv, 3}), kRefused);
  }
  for (const KeyEntry entry : {Mac, SubKey}) {
    EXPECT_EQ(entry({{kKey8}, {"00"}, kNoIv, 3}), kRefused) << "a mode of the block entries";
    EXPECT_EQ(entry({{kKey16}, {"00"}, kNoIv, 4}), kRefused);
  }
}

TEST(OddInputs, FillTheAreaButNeverOverrunIt) {
  const std::string most(2 * 256, '0');
  for (const KeyEntry entry : {Encrypt, Decrypt}) {
    for (const std::int32_t mode : {0, 3}) {
      EXPECT_EQ(entry({{kKey8}, {most.c_str()}, kNoIv, mode}).size(), most.size());
      EXPECT_EQ(entry({{kKey8}, {most.c_str(), 249}, kNoIv, mode}).size(), most.size());
      EXPECT_EQ(entry({{kKey8}, {(most + "00").c_str()}, kNoIv, mode}), kRefused);
    }
  }
  const std::string longText(2 * 100003, '0');
  EXPECT_EQ(Mac({{kKey16}, {longText.c_str()}, kNoIv, 1}).size(), 16u);
  EXPECT_EQ(SubKey({{kKey16}, {longText.c_str()}, kNoIv, 1}).size(), 32u);
}

TEST(OddInputs, NoPlaceForTheResult) {
  const auto key = FromHex(kKey8);
  std::uint8_t area[256] = {};
  std::int32_t length = 0;
  const CryptoProvider& provider = DefaultProvider();
  EXPECT_EQ(provider.CryptoMac(key.data(), 8, area, 1, nullptr, 0, area, nullptr, 0), 0);
  EXPECT_EQ(provider.CryptoMac(key.data(), 8, area, 1, nullptr, 0, nullptr, &length, 0), 0);
  EXPECT_EQ(length, -1);
  EXPECT_EQ(provider.CryptoHash(area, 1, nullptr, 0, &length), 0);
  std::uint8_t* nowhere = nullptr;
  EXPECT_EQ(provider.CryptoHash(area, 1, &nowhere, 0, &length), 0);
  EXPECT_EQ(provider.CryptoRsaPublic("CA1", "11", "41", nullptr, 0), 0);
}

TEST(OddInputs, HashTakesAnyLength) {
  const auto hash = [](const std::uint8_t* data, std::int32_t count) -> std::string {
    std::vector<std::uint8_t> area(4096);
    std::uint8_t* output = area.data();
    std::int32_t length = 0;
    const bool done = DefaultProvider().CryptoHash(data, count, &output, 0, &length) != 0;
    EXPECT_EQ(output, area.data());
    return done ? ToHex(area.data(), static_cast<std::size_t>(length)) : kRefused;
  };
  const std::vector<std::uint8_t> million(1000000, 'a');
  EXPECT_EQ(hash(nullptr, 0), "DA39A3EE5E6B4B0D3255BFEF95601890AFD80709");
  EXPECT_EQ(hash(million.data(), 1000000), "34AA973CD4C4DAA4F61EEB2BDBAD27316534016F");  // FIPS 180
  EXPECT_EQ(hash(million.data(), -1), kRefused);
  EXPECT_EQ(hash(nullptr, 1), kRefused);
}

TEST(OddInputs, RsaRefusesWhatIsNoNumberOrTooLarge) {
  struct Row {
    std::string modulus, exponent, data;
  };
  const std::string longest(4096, 'F');  // digits: 16,384 bits
  const Row rows[] = {
      {"", "11", "41"},
      {"CA1", "", "41"},
      {"CA1", "11", ""},
      {"CAG", "11", "41"},
      {"CA1", "1-", "41"},
      {"CA1", "11", "0x41"},
      {"-CA1", "11", "41"},
      {"CA1", "+11", "41"},
      {"CA 1", "11", "41"},
      {"\xC3\x84", "11", "41"},
      {"0", "11", "0"},
      {"0000", "11", "0"},
      {"CA1", "11", "CA1"},
      {"CA1", "11", "CA2"},
      {longest + "F", "11", "41"},
      {"CA1", longest + "F", "41"},
      {longest, "11", longest},
      {std::string(1 << 20, 'F'), std::string(1 << 20, 'F'), std::string(1 << 20, 'E')},
  };
  const auto entry = DefaultProvider().CryptoRsaPublic;
  for (const Row& row : rows) {
    const char* result = nullptr;
    EXPECT_EQ(entry(row.modulus.c_str(), row.exponent.c_str(), row.data.c_str(), &result, 0), 0)
        << row.modulus.substr(0, 80);
    EXPECT_EQ(result, nullptr);
  }
  const char* result = nullptr;
  EXPECT_EQ(entry(nullptr, "11", "41", &result, 0), 0);
  EXPECT_EQ(entry("CA1", nullptr, "41", &result, 0), 0);
  EXPECT_EQ(entry("CA1", "11", nullptr, &result, 0), 0);

  const std::string zeros(1 << 20, '0');
  ASSERT_EQ(entry((zeros + longest).c_str(), "1", "AB", &result, 0), 1);
  EXPECT_EQ(result, std::string(4094, '0') + "AB") << "leading zeros are no part of the length";
}

}  // namespace
}  // namespace orvane_test
