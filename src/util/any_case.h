#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace orvane {

// Turns a to z into A to Z and leaves every other byte, whatever the locale.
constexpr char UpperCase(char c) {
  return static_cast<char>(c >= 'a' && c <= 'z' ? c - ('a' - 'A') : c);
}

// For lookups of text in a hash table, in either case and without a copy.
struct AnyCaseEqual {
  using is_transparent = void;
  bool operator()(std::string_view left, std::string_view right) const {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char l, char r) { return l == r || UpperCase(l) == UpperCase(r); });
  }
};

struct AnyCaseHash {
  using is_transparent = void;
  // Takes eight octets at a time. Ignores the bit that separates lower from upper case.
  std::size_t operator()(std::string_view text) const {
    constexpr std::uint64_t kCaseBits = 0x2020202020202020;
    constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15;
    std::uint64_t hash = 0;
    std::uint64_t octets = 0;
    const auto mix = [&] { hash = ((hash ^ (octets | kCaseBits)) * kFactor) ^ (hash >> 29U); };
    for (; text.size() >= sizeof octets; text.remove_prefix(sizeof octets)) {
      std::memcpy(&octets, text.data(), sizeof octets);
      mix();
    }
    octets = text.size();
    for (const char c : text) octets = octets << 8U | static_cast<unsigned char>(c);
    mix();
    return static_cast<std::size_t>(hash);
  }
};

}  // namespace orvane
