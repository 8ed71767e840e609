#include <algorithm>
#include <cstdint>
#include <memory>
#include <string_view>

#include "commands/builtin.h"
#include "commands/crypto_provider_table.h"
#include "platform/foreign_call.h"
#include "util/hex.h"

namespace orvane {
namespace {

constexpr std::size_t kIvBytes = 16;
constexpr std::size_t kDataBytes = 256;
constexpr std::size_t kResultBytes = 256;
constexpr std::size_t kHashBytes = 4096;

std::size_t ByteCount(const std::string& hex) { return hex.size() / 2; }

// The octets of a hexadecimal text, zeros behind them. The area has one octet more than the
// provider is told of: the last digit of an odd text goes there.
template <std::size_t size>
struct Area {
  explicit Area(const std::string& hex) : count(static_cast<std::int32_t>(ByteCount(hex))) {
    DecodeHex(hex, octets);
  }
  std::uint8_t octets[size + 1] = {};
  std::int32_t count;
};

// The areas of one provider call. They are made after all arguments are read, so that nested
// calls do not multiply them.
struct BlockAreas {
  BlockAreas(const std::string& keyHex, const std::string& dataHex, const std::string& ivHex)
      : key(keyHex), data(dataHex), iv(ivHex) {}

  Area<32> key;
  Area<kDataBytes> data;
  Area<kIvBytes> iv;
  std::uint8_t result[kResultBytes] = {};
  std::int32_t resultCount = -1;  // not a length: the provider has to set one
};

bool ReadKey(CommandCall& call, std::string& key) {
  if (!call.Read(key)) return false;
  const std::size_t count = ByteCount(key);
  return count == 8 || count == 16 || count == 24;
}

// Null if a text is longer than its area.
std::unique_ptr<BlockAreas> FillAreas(const std::string& key, const std::string& data,
                                      const std::string& iv = {}) {
  if (ByteCount(data) > kDataBytes || ByteCount(iv) > kIvBytes) return nullptr;
  return std::make_unique<BlockAreas>(key, data, iv);
}

// The arguments of @descbc and @mac.
struct ChainedArguments {
  std::string key;
  std::string data;
  std::string iv;
  std::string flag;

  bool Read(CommandCall& call) {
    return ReadKey(call, key) && call.ReadNext(data) && call.ReadNext(iv) && call.ReadNext(flag);
  }
};

bool IsLongKey(const std::string& key) { return ByteCount(key) > 8; }

bool GiveOctets(CommandCall& call, const std::uint8_t* area, std::size_t size, std::int32_t count) {
  if (count < 0 || static_cast<std::size_t>(count) > size) return false;
  call.GiveHex(area, static_cast<std::size_t>(count));
  return true;
}

bool GiveResult(CommandCall& call, const BlockAreas& areas) {
  return GiveOctets(call, areas.result, kResultBytes, areas.resultCount);
}

template <typename Entry, typename... Arguments>
std::int32_t CallProvider(Entry entry, Arguments... arguments) {
  return platform::CallForeign([&] { return entry(arguments...); });
}

bool RunBlockEntry(CommandCall& call, BlockAreas& areas, const std::string& flag, std::int32_t mode,
                   bool withIv) {
  const CryptoProvider& provider = BoundCryptoProvider();
  const CryptoBlockEntry entry =
      flag == "1" ? provider.CryptoBlockFlagged : provider.CryptoBlockDefault;
  if (entry == nullptr) return false;
  CallProvider(entry, withIv ? areas.iv.octets : nullptr, withIv ? areas.iv.count : 0,
               areas.key.octets, areas.key.count, areas.data.octets, areas.data.count, areas.result,
               &areas.resultCount, mode);
  return GiveResult(call, areas);
}

void RemoveBlanks(std::string& text) { std::erase(text, ' '); }

bool Fail(CommandCall& call, std::string_view message) {
  call.Give(message);
  return false;
}

}  // namespace

bool Des(CommandCall& call) {
  std::string key;
  std::string data;
  std::string flag;
  if (!ReadKey(call, key) || !call.ReadNext(data) || !call.ReadNext(flag)) return false;
  call.Close();
  const auto areas = FillAreas(key, data);
  return areas && RunBlockEntry(call, *areas, flag, IsLongKey(key) ? 1 : 0, false);
}

bool DesCbc(CommandCall& call) {
  ChainedArguments given;
  if (!given.Read(call)) return false;
  call.Close();
  const auto areas = FillAreas(given.key, given.data, given.iv);
  return areas && RunBlockEntry(call, *areas, given.flag, IsLongKey(given.key) ? 4 : 3, true);
}

bool Mac(CommandCall& call) {
  ChainedArguments given;
  if (!given.Read(call)) return false;
  const auto areas = FillAreas(given.key, given.data, given.iv);
  if (!areas) return false;
  const CryptoMacEntry entry = BoundCryptoProvider().CryptoMac;
  if (entry == nullptr) return false;
  areas->resultCount = 0;
  CallProvider(entry, areas->key.octets, areas->key.count, areas->data.octets, areas->data.count,
               areas->iv.octets, areas->iv.count, areas->result, &areas->resultCount,
               IsLongKey(given.key) ? 1 : 0);
  if (!GiveResult(call, *areas)) return false;
  if (given.flag == "1") call.out.erase(std::min<std::size_t>(8, call.out.size()));
  call.Close();
  return true;
}

bool SubKey(CommandCall& call) {
  std::string key;
  std::string data;
  if (!ReadKey(call, key) || !call.ReadNext(data)) return false;
  call.Close();
  const auto areas = FillAreas(key, data);
  if (!areas) return false;
  const CryptoSubKeyEntry entry = BoundCryptoProvider().CryptoSubKey;
  if (entry == nullptr) return false;
  CallProvider(entry, areas->key.octets, areas->key.count, areas->data.octets, areas->data.count,
               areas->result, &areas->resultCount, IsLongKey(key) ? 1 : 0);
  return GiveResult(call, *areas);
}

bool RsaPubEnc(CommandCall& call) {
  std::string modulus;
  std::string exponent;
  std::string data;
  if (!call.Read(modulus) || !call.ReadNext(exponent) || !call.ReadNext(data)) return false;
  if (data.size() > modulus.size()) return Fail(call, "Data too long for public key");
  call.Close();
  for (std::string* const text : {&modulus, &exponent, &data}) RemoveBlanks(*text);

  const CryptoRsaPublicEntry entry = BoundCryptoProvider().CryptoRsaPublic;
  if (entry == nullptr) return false;
  const char* result = nullptr;
  if (CallProvider(entry, modulus.c_str(), exponent.c_str(), data.c_str(), &result, 0) == 0 ||
      result == nullptr) {
    return Fail(call, "RSA加密失败");
  }
  const std::string_view digits = result;
  call.Give(digits.substr(std::min(digits.find_first_not_of('0'), digits.size())));
  return true;
}

bool Hash(CommandCall& call) {
  std::string hex;
  if (!call.Read(hex)) return false;
  call.Close();
  RemoveBlanks(hex);
  if (hex.empty()) return Fail(call, "HEX串为空，请检查！");
  const auto bad =
      std::find_if(hex.begin(), hex.end(), [](char c) { return HexDigitValue(c) == kBadDigit; });
  if (bad != hex.end()) {
    const auto position = std::to_string(bad - hex.begin() + 1);
    return Fail(call, "第" + position + "个字符不是16进制字符，请检查！");
  }
  if (hex.size() % 2 != 0) hex += '0';
  if (ByteCount(hex) > kHashBytes) return false;

  const CryptoHashEntry entry = BoundCryptoProvider().CryptoHash;
  if (entry == nullptr) return false;
  const auto data = std::make_unique<Area<kHashBytes>>(hex);
  const auto digest = std::make_unique<std::uint8_t[]>(kHashBytes);
  std::uint8_t* output = digest.get();
  std::int32_t count = 0;
  return CallProvider(entry, data->octets, data->count, &output, 0, &count) != 0 &&
         GiveOctets(call, digest.get(), kHashBytes, count);
}

}  // namespace orvane
