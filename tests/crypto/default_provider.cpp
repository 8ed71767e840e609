#include "crypto/default_provider.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "orvane.h"
#include "support/module_loading.h"

namespace orvane_test {
namespace {

constexpr std::size_t kAreaBytes = 256;

CryptoProvider Load() {
  std::string why;
  const std::filesystem::path folder = ORVANE_BUILD_FOLDER;
  void* const module = support::LoadModule(folder / support::ModuleFileName("orvane_crypto"), why);
  if (module == nullptr) throw std::runtime_error(why);
  CryptoProvider provider{};
  const auto bind = [module](auto& entry, const char* name) {
    entry = reinterpret_cast<std::remove_reference_t<decltype(entry)>>(
        support::FindExport(module, name));
    if (entry == nullptr) throw std::runtime_error(std::string("no entry ") + name);
  };
  bind(provider.CryptoHash, "CryptoHash");
  bind(provider.CryptoBlockFlagged, "CryptoBlockFlagged");
  bind(provider.CryptoBlockDefault, "CryptoBlockDefault");
  bind(provider.CryptoSubKey, "CryptoSubKey");
  bind(provider.CryptoMac, "CryptoMac");
  bind(provider.CryptoRsaPublic, "CryptoRsaPublic");
  return provider;
}

// What is handed over for one string, in memory of its own.
class Area {
 public:
  explicit Area(const Handed& handed) : isNull_(handed.hex == nullptr) {
    if (!isNull_) octets_ = FromHex(handed.hex);
    count_ = handed.count.value_or(static_cast<std::int32_t>(octets_.size()));
    octets_.shrink_to_fit();
  }
  const std::uint8_t* Pointer() const { return isNull_ ? nullptr : octets_.data(); }
  std::int32_t Count() const { return count_; }

 private:
  bool isNull_;
  std::vector<std::uint8_t> octets_;
  std::int32_t count_ = 0;
};

template <typename Run>
std::string Collect(const Run& run) {
  std::vector<std::uint8_t> output(kAreaBytes);
  std::int32_t length = 4711;
  const std::int32_t returned = run(output.data(), &length);
  if (length == -1) {
    EXPECT_EQ(returned, 0);
    EXPECT_EQ(output, std::vector<std::uint8_t>(kAreaBytes)) << "written although refused";
    return kRefused;
  }
  EXPECT_EQ(returned, 1);
  if (length < 0 || static_cast<std::size_t>(length) > kAreaBytes) {
    return "length " + std::to_string(length);
  }
  EXPECT_TRUE(std::all_of(output.begin() + length, output.end(), [](int c) { return c == 0; }))
      << "written behind the result";
  return ToHex(output.data(), static_cast<std::size_t>(length));
}

std::string RunBlocks(CryptoBlockEntry entry, const KeyCall& call) {
  const Area iv(call.iv), key(call.key), data(call.data);
  return Collect([&](std::uint8_t* output, std::int32_t* length) {
    return entry(iv.Pointer(), iv.Count(), key.Pointer(), key.Count(), data.Pointer(), data.Count(),
                 output, length, call.mode);
  });
}

}  // namespace

const CryptoProvider& DefaultProvider() {
  static const CryptoProvider provider = Load();
  return provider;
}

std::string Encrypt(const KeyCall& call) {
  return RunBlocks(DefaultProvider().CryptoBlockFlagged, call);
}

std::string Decrypt(const KeyCall& call) {
  return RunBlocks(DefaultProvider().CryptoBlockDefault, call);
}

std::string SubKey(const KeyCall& call) {
  const Area key(call.key), data(call.data);
  return Collect([&](std::uint8_t* output, std::int32_t* length) {
    return DefaultProvider().CryptoSubKey(key.Pointer(), key.Count(), data.Pointer(), data.Count(),
                                          output, length, call.mode);
  });
}

std::string Mac(const KeyCall& call) {
  const Area iv(call.iv), key(call.key), data(call.data);
  return Collect([&](std::uint8_t* output, std::int32_t* length) {
    return DefaultProvider().CryptoMac(key.Pointer(), key.Count(), data.Pointer(), data.Count(),
                                       iv.Pointer(), iv.Count(), output, length, call.mode);
  });
}

std::vector<std::uint8_t> FromHex(const std::string& hex) {
  std::vector<std::uint8_t> octets(hex.size() / 2);
  AsciiToHex(hex.c_str(), octets.data(), static_cast<std::int32_t>(hex.size()));
  return octets;
}

std::string ToHex(const std::uint8_t* octets, std::size_t count) {
  std::string hex(2 * count, '\0');
  HexToAscii(octets, hex.data(), static_cast<std::int32_t>(count));
  return hex;
}

}  // namespace orvane_test
