#pragma once

#include <algorithm>
#include <string_view>

namespace orvane {

// a to z become A to Z; every other byte stays, whatever the locale.
constexpr char UpperCase(char c) {
  return static_cast<char>(c >= 'a' && c <= 'z' ? c - ('a' - 'A') : c);
}

constexpr bool EqualInAnyCase(std::string_view left, std::string_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](char l, char r) { return l == r || UpperCase(l) == UpperCase(r); });
}

}  // namespace orvane
