// The cryptography under the entries of the default provider, on libgcrypt.
#pragma once

#include <gcrypt.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace crypto {

using Octets = std::span<const std::uint8_t>;

// Overwrites octets that must not stay in memory.
inline void Wipe(std::span<std::uint8_t> area) {
  // The compiler would leave out plain stores into an area that is about to be freed.
  for (volatile std::uint8_t& octet : area) octet = 0;
}

// An area for keys and data made with them: zero at the start, wiped at the end.
template <std::size_t size>
class Secret : public std::array<std::uint8_t, size> {
 public:
  Secret() : std::array<std::uint8_t, size>{} {}
  // Cuts the octets, or fills them up with 00, to the size of the area.
  explicit Secret(Octets octets) : Secret() {
    std::copy_n(octets.begin(), std::min(octets.size(), size), this->begin());
  }
  Secret(const Secret&) = default;
  Secret& operator=(const Secret&) = default;
  ~Secret() { Wipe(*this); }
};

// Checks libgcrypt's version before its first use; false if it is too old. libgcrypt initialises
// itself, and its settings stay the host's: secure memory is neither requested nor disabled. Our
// own areas are wiped, and libgcrypt wipes its handles and numbers. A key that came as a script's
// text was in ordinary memory before.
bool StartGcrypt();

inline constexpr std::size_t kDigestBytes = 20;

// SHA-1 (FIPS 180). False if libgcrypt refuses it.
bool Hash(Octets data, std::span<std::uint8_t, kDigestBytes> digest);

inline constexpr std::size_t kBlockBytes = 8;
using Block = Secret<kBlockBytes>;

enum class Chaining { kEcb, kCbc };

// DES for a key of 8 octets; triple DES for one of 24, or of 16, which means K1 K2 K1. Parity is
// ignored, and weak keys work like all others: test cards have them.
class BlockCipher {
 public:
  // With a key of another length every call fails. iv is the first chaining value of CBC.
  BlockCipher(Octets key, Chaining chaining, const Block& iv = {});
  BlockCipher(const BlockCipher&) = delete;
  BlockCipher& operator=(const BlockCipher&) = delete;
  ~BlockCipher() { gcry_cipher_close(handle_); }

  // Work in place on whole blocks. With CBC each call continues the chain of the one before. False,
  // with the area as it was, if there is no cipher.
  bool Encrypt(std::span<std::uint8_t> blocks);
  bool Decrypt(std::span<std::uint8_t> blocks);

 private:
  gcry_cipher_hd_t handle_ = nullptr;
};

// The MAC of data of any length, by ISO/IEC 9797-1 with padding method 2. A key of 8 octets:
// algorithm 1 (CBC-MAC). 16 octets: algorithm 3 (retail MAC). 24 octets: algorithm 3 with a third
// key for the last encryption. mac holds the first chaining value on entry and the MAC on return.
// False for a key of another length.
bool ComputeMac(Octets key, Octets data, Block& mac);

inline constexpr std::size_t kLongestSubKey = 2 * kBlockBytes;

// Derives a card's key from a master key and data that identify the card. D is the first 8 octets
// of data, filled up with 00. The key is E(D) for a master key of 8 octets, E(D) and E(not D) for
// one of 16 or 24. Gives the sub-key's length; 0 for a master key of another length.
std::size_t DeriveSubKey(Octets masterKey, Octets data, Secret<kLongestSubKey>& subKey);

// data to the power of exponent, modulo modulus, without padding. All are hexadecimal numbers, most
// significant digit first; the result has two upper-case digits for each octet of modulus. Empty if
// a text is empty or holds anything but digits, modulus is zero, data is not below modulus, or a
// number has more than 16,384 bits (it would take more than seconds).
std::optional<std::string> RsaPublic(std::string_view modulus, std::string_view exponent,
                                     std::string_view data);

}  // namespace crypto
