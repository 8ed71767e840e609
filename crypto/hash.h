#pragma once

#include "octets.h"

namespace crypto {

inline constexpr std::size_t kDigestBytes = 20;

// SHA-1 (FIPS 180). False if libgcrypt refuses it.
bool Hash(Octets data, std::span<std::uint8_t, kDigestBytes> digest);

}  // namespace crypto
