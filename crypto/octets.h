#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

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

}  // namespace crypto
