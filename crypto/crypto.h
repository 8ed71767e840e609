// What the entries of the default provider stand on, over libgcrypt.
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

// Overwrites what nobody shall find in memory later.
inline void Wipe(std::span<std::uint8_t> area) {
  // Plain stores into an area that is about to go would be left out by the compiler.
  for (volatile std::uint8_t& octet : area) octet = 0;
}

// An area for keys and what is made with them: zero at the start, wiped at the end.
template <std::size_t size>
class Secret : public std::array<std::uint8_t, size> {
 public:
  Secret() : std::array<std::uint8_t, size>{} {}
  // Cuts the octets or fills them with 00 to the size of the area.
  explicit Secret(Octets octets) : Secret() {
    std::copy_n(octets.begin(), std::min(octets.size(), size), this->begin());
  }
  Secret(const Secret&) = default;
  Secret& operator=(const Secret&) = default;
  ~Secret() { Wipe(*this); }
};

// Looks at libgcrypt before its first use. False if there is only one that is too old. It gets
// ready by itself, and its settings stay the host's: no locked memory is asked for, and none is
// switched off. What is ours is wiped instead, and libgcrypt wipes its handles and numbers; a key
// that came as the text of a script has been in ordinary memory before.
bool StartGcrypt();

inline constexpr std::size_t kDigestBytes = 20;

// SHA-1 (FIPS 180). False if libgcrypt refuses it.
bool Hash(Octets data, std::span<std::uint8_t, kDigestBytes> digest);

inline constexpr std::size_t kBlockBytes = 8;
using Block = Secret<kBlockBytes>;

enum class Chaining { kEcb, kCbc };

// DES for a key of 8 octets; triple DES for one of 24, or of 16, which stands for K1 K2 K1. Parity
// is not looked at, and weak keys work like all others: test cards have them.
class BlockCipher {
 public:
  // A key of another length gives a cipher that fails. iv is the first chaining value of CBC.
  BlockCipher(Octets key, Chaining chaining, const Block& iv = {});
  BlockCipher(const BlockCipher&) = delete;
  BlockCipher& operator=(const BlockCipher&) = delete;
  ~BlockCipher() { gcry_cipher_close(handle_); }

  // These work in place on whole blocks, and with CBC each call goes on where the last one ended.
  // False, with the area as it was, if there is no cipher.
  bool Encrypt(std::span<std::uint8_t> blocks);
  bool Decrypt(std::span<std::uint8_t> blocks);

 private:
  gcry_cipher_hd_t handle_ = nullptr;
};

// The MAC of data of any length, by ISO/IEC 9797-1 with padding method 2: algorithm 1 (CBC-MAC)
// for a key of 8 octets, algorithm 3 (retail MAC) for one of 16, and for one of 24 as algorithm 3
// with a third key of its own for the last encryption. mac is the first chaining value at the
// start and the MAC at the end. False for a key of another length.
bool ComputeMac(Octets key, Octets data, Block& mac);

inline constexpr std::size_t kLongestSubKey = 2 * kBlockBytes;

// Derives a card's key from a master key and data that tell the card apart, of which D, the first
// 8 octets (filled with 00), count: E(D) for a master key of 8 octets, E(D) and E(not D) for one
// of 16 or 24. Gives the sub-key's length; 0 for a master key of another length.
std::size_t DeriveSubKey(Octets masterKey, Octets data, Secret<kLongestSubKey>& subKey);

// data to the power of exponent, modulo modulus, without any padding. All are hexadecimal numbers,
// most significant digit first; the result has two upper-case digits for every octet of modulus.
// Nothing for a text that is empty or holds anything but digits, a modulus of zero, data not below
// the modulus, and numbers above 16,384 bits, which would take more than seconds.
std::optional<std::string> RsaPublic(std::string_view modulus, std::string_view exponent,
                                     std::string_view data);

}  // namespace crypto
