#include "crypto.h"

namespace crypto {

bool StartGcrypt() {
  constexpr char kOldest[] = "1.10.0";  // the first whose cipher handles can allow weak keys
  static const bool started = gcry_check_version(kOldest) != nullptr;
  return started;
}

bool Hash(Octets data, std::span<std::uint8_t, kDigestBytes> digest) {
  gcry_buffer_t source{};
  source.len = data.size();
  source.data = const_cast<std::uint8_t*>(data.data());  // libgcrypt only reads it
  return StartGcrypt() && gcry_md_hash_buffers(GCRY_MD_SHA1, 0, digest.data(), &source, 1) == 0;
}

}  // namespace crypto
