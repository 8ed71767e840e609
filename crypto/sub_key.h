#pragma once

#include "block_cipher.h"

namespace crypto {

inline constexpr std::size_t kLongestSubKey = 2 * kBlockBytes;

// Derives a card's key from a master key and data that tell the card apart, of which D, the first
// 8 octets (filled with 00), count: E(D) for a master key of 8 octets, E(D) and E(not D) for one
// of 16 or 24. Gives the sub-key's length; 0 for a master key of another length.
std::size_t DeriveSubKey(Octets masterKey, Octets data, Secret<kLongestSubKey>& subKey);

}  // namespace crypto
