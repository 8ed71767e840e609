#include "crypto.h"

namespace crypto {
namespace {

constexpr std::size_t kLongestKey = 3 * kBlockBytes;

gcry_cipher_hd_t Open(int algorithm, Chaining chaining) {
  const int mode = chaining == Chaining::kCbc ? GCRY_CIPHER_MODE_CBC : GCRY_CIPHER_MODE_ECB;
  gcry_cipher_hd_t handle = nullptr;
  if (!StartGcrypt() || gcry_cipher_open(&handle, algorithm, mode, 0) != 0) return nullptr;
  return handle;
}

bool SetKey(gcry_cipher_hd_t handle, Octets key) {
  if (gcry_cipher_ctl(handle, GCRYCTL_SET_ALLOW_WEAK_KEY, nullptr, 1) != 0) return false;
  // libgcrypt reports a weak key as an error but has set it.
  const auto code = gcry_err_code(gcry_cipher_setkey(handle, key.data(), key.size()));
  return code == GPG_ERR_NO_ERROR || code == GPG_ERR_WEAK_KEY;
}

}  // namespace

BlockCipher::BlockCipher(Octets key, Chaining chaining, const Block& iv) {
  const bool isSingle = key.size() == kBlockBytes;
  if (!isSingle && key.size() != 2 * kBlockBytes && key.size() != kLongestKey) return;
  Secret<kLongestKey> whole(key);
  if (key.size() == 2 * kBlockBytes) {
    std::copy_n(key.begin(), kBlockBytes, whole.begin() + 2 * kBlockBytes);
  }
  gcry_cipher_hd_t handle = Open(isSingle ? GCRY_CIPHER_DES : GCRY_CIPHER_3DES, chaining);
  if (handle == nullptr) return;
  if (SetKey(handle, Octets(whole).first(isSingle ? kBlockBytes : kLongestKey)) &&
      (chaining == Chaining::kEcb || gcry_cipher_setiv(handle, iv.data(), iv.size()) == 0)) {
    handle_ = handle;
  } else {
    gcry_cipher_close(handle);
  }
}

bool BlockCipher::Encrypt(std::span<std::uint8_t> blocks) {
  return handle_ != nullptr &&
         gcry_cipher_encrypt(handle_, blocks.data(), blocks.size(), nullptr, 0) == 0;
}

bool BlockCipher::Decrypt(std::span<std::uint8_t> blocks) {
  return handle_ != nullptr &&
         gcry_cipher_decrypt(handle_, blocks.data(), blocks.size(), nullptr, 0) == 0;
}

bool ComputeMac(Octets key, Octets data, Block& mac) {
  if (key.size() < kBlockBytes) return false;
  BlockCipher chain(key.first(kBlockBytes), Chaining::kCbc, mac);
  for (; data.size() >= kBlockBytes; data = data.subspan(kBlockBytes)) {
    std::copy_n(data.begin(), kBlockBytes, mac.begin());
    if (!chain.Encrypt(mac)) return false;
  }
  Block last(data);
  last[data.size()] = 0x80;
  // Algorithm 3 decrypts the result with K2 and encrypts it with K3: with the last encryption under
  // K1 that is triple DES of the last block.
  BlockCipher end(key, Chaining::kCbc, mac);
  if (!end.Encrypt(last)) return false;
  mac = last;
  return true;
}

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
