#include "sub_key.h"

namespace crypto {

std::size_t DeriveSubKey(Octets masterKey, Octets data, Secret<kLongestSubKey>& subKey) {
  const Block source(data);
  std::copy(source.begin(), source.end(), subKey.begin());
  std::transform(source.begin(), source.end(), subKey.begin() + kBlockBytes,
                 [](std::uint8_t octet) { return static_cast<std::uint8_t>(~octet); });
  const std::size_t length = masterKey.size() == kBlockBytes ? kBlockBytes : kLongestSubKey;
  BlockCipher cipher(masterKey, Chaining::kEcb);
  return cipher.Encrypt(std::span(subKey).first(length)) ? length : 0;
}

}  // namespace crypto
