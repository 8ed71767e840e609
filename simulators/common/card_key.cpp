#include "common/card_key.h"

#include "crypto/crypto.h"

namespace simulator {

CardKey::CardKey(const Octets& masterKey, const Octets& serialNumber) {
  crypto::Secret<crypto::kLongestSubKey> key;
  const size_t length = crypto::DeriveSubKey(masterKey, serialNumber, key);
  key_.assign(key.begin(), key.begin() + length);
}

Octets CardKey::Encrypt(const Octets& block) const {
  Octets result = block;
  crypto::BlockCipher cipher(key_, crypto::Chaining::kEcb);
  return cipher.Encrypt(result) ? result : Octets();
}

Octets CardKey::Mac(const Octets& start, const Octets& data) const {
  crypto::Block mac(start);
  return crypto::ComputeMac(key_, data, mac) ? Octets(mac.begin(), mac.end()) : Octets();
}

}  // namespace simulator
