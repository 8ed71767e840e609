#include "common/card_key.h"

#include <gcrypt.h>

#include <algorithm>

namespace simulator {
namespace {

enum class Direction { kEncrypt, kDecrypt };

// DES or, with a key of 24 octets, triple DES: CBC that begins with start.
Octets Transform(Direction direction, const Octets& key, const Octets& start, Octets blocks) {
  gcry_check_version(nullptr);  // makes libgcrypt ready and leaves its settings to the host
  gcry_cipher_hd_t cipher = nullptr;
  const int algorithm = key.size() == kBlockSize ? GCRY_CIPHER_DES : GCRY_CIPHER_3DES;
  gcry_cipher_open(&cipher, algorithm, GCRY_CIPHER_MODE_CBC, 0);
  const auto transform =
      direction == Direction::kEncrypt ? gcry_cipher_encrypt : gcry_cipher_decrypt;
  const bool done = cipher != nullptr && gcry_cipher_setkey(cipher, key.data(), key.size()) == 0 &&
                    gcry_cipher_setiv(cipher, start.data(), start.size()) == 0 &&
                    transform(cipher, blocks.data(), blocks.size(), nullptr, 0) == 0;
  gcry_cipher_close(cipher);
  return done ? blocks : Octets();
}

// One block by itself, which is CBC that begins with zeros.
Octets TransformBlock(Direction direction, const Octets& key, const Octets& block) {
  return Transform(direction, key, Octets(kBlockSize), block);
}

Octets Inverted(Octets octets) {
  for (uint8_t& octet : octets) octet = static_cast<uint8_t>(~octet);
  return octets;
}

Octets Part(const Octets& octets, size_t block) {
  const auto begin = octets.begin() + static_cast<std::ptrdiff_t>(block * kBlockSize);
  return {begin, begin + kBlockSize};
}

// K1 K2 as K1 K2 K1.
Octets Extended(Octets key) {
  const Octets first = Part(key, 0);
  key.insert(key.end(), first.begin(), first.end());
  return key;
}

}  // namespace

CardKey::CardKey(const Octets& masterKey, const Octets& serialNumber) {
  const Octets master = Extended(masterKey);
  const Octets left = TransformBlock(Direction::kEncrypt, master, serialNumber);
  const Octets right = TransformBlock(Direction::kEncrypt, master, Inverted(serialNumber));
  if (left.empty() || right.empty()) return;
  key_ = left;
  key_.insert(key_.end(), right.begin(), right.end());
  key_ = Extended(key_);
}

Octets CardKey::Encrypt(const Octets& block) const {
  return TransformBlock(Direction::kEncrypt, key_, block);
}

Octets CardKey::Mac(const Octets& start, Octets data) const {
  if (key_.empty()) return {};
  data.push_back(0x80);
  data.resize((data.size() + kBlockSize - 1) / kBlockSize * kBlockSize);
  const Octets left = Part(key_, 0);
  const Octets right = Part(key_, 1);
  const Octets chain = Transform(Direction::kEncrypt, left, start, data);
  if (chain.empty()) return {};
  const Octets last = Part(chain, chain.size() / kBlockSize - 1);
  return TransformBlock(Direction::kEncrypt, left,
                        TransformBlock(Direction::kDecrypt, right, last));
}

}  // namespace simulator
