#pragma once

#include <gcrypt.h>

#include "octets.h"

namespace crypto {

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

}  // namespace crypto
