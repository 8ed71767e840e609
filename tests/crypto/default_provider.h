// The entries of the default provider, as the module in the build folder exports them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "src/commands/crypto_provider.h"

namespace orvane_test {

const CryptoProvider& DefaultProvider();

/// An octet string that is handed over: a null pointer for no text, and the true length unless
/// another count is told.
struct Handed {
  const char* hex;
  std::optional<std::int32_t> count = std::nullopt;
};

/// What the entries of the four commands with keys are handed.
struct KeyCall {
  Handed key;
  Handed data;
  Handed iv = {nullptr, 0};
  std::int32_t mode = 0;
};

using KeyEntry = std::string (*)(const KeyCall& call);

/// These give the result in hexadecimal, and kRefused for a call that is refused as it should be:
/// with 0, the length -1 and the output area as it was. Every area is just as long as its octets,
/// so that the sanitizers see each one read too far.
inline constexpr char kRefused[] = "refused";
std::string Encrypt(const KeyCall& call);
std::string Decrypt(const KeyCall& call);
std::string SubKey(const KeyCall& call);
std::string Mac(const KeyCall& call);

std::vector<std::uint8_t> FromHex(const std::string& hex);
std::string ToHex(const std::uint8_t* octets, std::size_t count);

}  // namespace orvane_test
