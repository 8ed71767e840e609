#include "mac.h"

namespace crypto {

bool ComputeMac(Octets key, Octets data, Block& mac) {
  if (key.size() < kBlockBytes) return false;
  BlockCipher chain(key.first(kBlockBytes), Chaining::kCbc, mac);
  for (; data.size() >= kBlockBytes; data = data.subspan(kBlockBytes)) {
    std::copy_n(data.begin(), kBlockBytes, mac.begin());
    if (!chain.Encrypt(mac)) return false;
  }
  Block last(data);
  last[data.size()] = 0x80;
  // Algorithm 3 decrypts its result with K2 and encrypts it with K3: together with the last single
  // encryption that is triple DES of the last block.
  BlockCipher end(key, Chaining::kCbc, mac);
  if (!end.Encrypt(last)) return false;
  mac = last;
  return true;
}

}  // namespace crypto
