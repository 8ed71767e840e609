// The default provider: the six entries of src/commands/crypto_provider.h. They follow its rules
// and also survive any other arguments: for impossible ones they return 0, set the length to -1 and
// leave the output area as it was.
//
// CryptoBlockFlagged encrypts, CryptoBlockDefault decrypts. data is filled up with 00 to whole
// blocks; an initial value is cut or filled up with 00 to one block. crypto.h describes the others.
#include "crypto.h"
#include "src/commands/crypto_provider.h"

namespace crypto {
namespace {

constexpr std::size_t kAreaBytes = 256;

constexpr std::int32_t kFailed = 0;
constexpr std::int32_t kDone = 1;

// The octets that a caller passes; empty if pointer and count cannot be right.
std::optional<Octets> Read(const std::uint8_t* octets, std::int32_t count) {
  if (count < 0 || (count > 0 && octets == nullptr)) return std::nullopt;
  return Octets(octets, static_cast<std::size_t>(count));
}

bool IsModeOf(Octets key, std::int32_t mode) { return mode == (key.size() == kBlockBytes ? 0 : 1); }

// The place for an entry's result. The length is -1 until there is a result.
class Output {
 public:
  Output(std::uint8_t* area, std::int32_t* length) : area_(area), length_(length) {
    if (length != nullptr) *length = -1;
  }

  bool Takes(std::size_t count) const {
    return area_ != nullptr && length_ != nullptr && count <= kAreaBytes;
  }

  std::int32_t Give(Octets result) const {
    if (!Takes(result.size())) return kFailed;
    std::copy(result.begin(), result.end(), area_);
    *length_ = static_cast<std::int32_t>(result.size());
    return kDone;
  }

 private:
  std::uint8_t* area_;
  std::int32_t* length_;
};

enum class Direction { kEncrypt, kDecrypt };

std::int32_t RunBlocks(Direction direction, std::optional<Octets> iv, std::optional<Octets> key,
                       std::optional<Octets> data, const Output& output, std::int32_t mode) {
  constexpr std::int32_t kFirstCbcMode = 3;
  const bool isCbc = mode >= kFirstCbcMode;
  if (!iv || !key || !data || data->size() > kAreaBytes) return kFailed;
  if (!IsModeOf(*key, isCbc ? mode - kFirstCbcMode : mode)) return kFailed;

  Secret<kAreaBytes> area(*data);
  const auto blocks =
      std::span(area).first((data->size() + kBlockBytes - 1) / kBlockBytes * kBlockBytes);
  BlockCipher cipher(*key, isCbc ? Chaining::kCbc : Chaining::kEcb, Block(*iv));
  const bool done =
      direction == Direction::kEncrypt ? cipher.Encrypt(blocks) : cipher.Decrypt(blocks);
  return done ? output.Give(blocks) : kFailed;
}

}  // namespace

extern "C" {

CRYPTO_API std::int32_t CryptoHash(const std::uint8_t* data, std::int32_t dataBytes,
                                   std::uint8_t** output, std::int32_t /*reserved*/,
                                   std::int32_t* outputBytes) {
  const auto octets = Read(data, dataBytes);
  const Output result(output != nullptr ? *output : nullptr, outputBytes);
  std::array<std::uint8_t, kDigestBytes> digest;
  return octets && Hash(*octets, digest) ? result.Give(digest) : kFailed;
}

CRYPTO_API std::int32_t CryptoBlockFlagged(const std::uint8_t* iv, std::int32_t ivBytes,
                                           const std::uint8_t* key, std::int32_t keyBytes,
                                           const std::uint8_t* data, std::int32_t dataBytes,
                                           std::uint8_t* output, std::int32_t* outputBytes,
                                           std::int32_t mode) {
  return RunBlocks(Direction::kEncrypt, Read(iv, ivBytes), Read(key, keyBytes),
                   Read(data, dataBytes), Output(output, outputBytes), mode);
}

CRYPTO_API std::int32_t CryptoBlockDefault(const std::uint8_t* iv, std::int32_t ivBytes,
                                           const std::uint8_t* key, std::int32_t keyBytes,
                                           const std::uint8_t* data, std::int32_t dataBytes,
                                           std::uint8_t* output, std::int32_t* outputBytes,
                                           std::int32_t mode) {
  return RunBlocks(Direction::kDecrypt, Read(iv, ivBytes), Read(key, keyBytes),
                   Read(data, dataBytes), Output(output, outputBytes), mode);
}

CRYPTO_API std::int32_t CryptoSubKey(const std::uint8_t* key, std::int32_t keyBytes,
                                     const std::uint8_t* data, std::int32_t dataBytes,
                                     std::uint8_t* output, std::int32_t* outputBytes,
                                     std::int32_t mode) {
  const auto masterKey = Read(key, keyBytes);
  const auto octets = Read(data, dataBytes);
  const Output result(output, outputBytes);
  if (!masterKey || !octets || !IsModeOf(*masterKey, mode)) return kFailed;
  Secret<kLongestSubKey> subKey;
  const std::size_t length = DeriveSubKey(*masterKey, *octets, subKey);
  return length > 0 ? result.Give(Octets(subKey).first(length)) : kFailed;
}

CRYPTO_API std::int32_t CryptoMac(const std::uint8_t* key, std::int32_t keyBytes,
                                  const std::uint8_t* data, std::int32_t dataBytes,
                                  const std::uint8_t* iv, std::int32_t ivBytes,
                                  std::uint8_t* output, std::int32_t* outputBytes,
                                  std::int32_t mode) {
  const auto macKey = Read(key, keyBytes);
  const auto octets = Read(data, dataBytes);
  const auto start = Read(iv, ivBytes);
  const Output result(output, outputBytes);
  if (!macKey || !octets || !start || !IsModeOf(*macKey, mode)) return kFailed;
  Block mac(*start);
  return ComputeMac(*macKey, *octets, mac) ? result.Give(mac) : kFailed;
}

CRYPTO_API std::int32_t CryptoRsaPublic(const char* modulus, const char* exponent, const char* data,
                                        const char** output, std::int32_t /*reserved*/) try {
  static std::string text;  // the result, valid until the next call
  if (modulus == nullptr || exponent == nullptr || data == nullptr || output == nullptr) {
    return kFailed;
  }
  const auto result = RsaPublic(modulus, exponent, data);
  if (!result) return kFailed;
  text = *result;
  *output = text.c_str();
  return kDone;
} catch (...) {
  return kFailed;
}

}  // extern "C"

// Compiles only if every entry has the type that callers expect.
[[maybe_unused]] constexpr CryptoProvider kEntries = {
    CryptoHash, CryptoBlockFlagged, CryptoBlockDefault, CryptoSubKey, CryptoMac, CryptoRsaPublic};

}  // namespace crypto
