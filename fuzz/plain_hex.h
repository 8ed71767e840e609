#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace orvane_fuzz {

// Two upper-case digits an octet.
inline std::string HexOf(std::string_view octets) {
  std::string text;
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  for (const char octet : octets) {
    text += kDigits[static_cast<unsigned char>(octet) / 16];
    text += kDigits[static_cast<unsigned char>(octet) % 16];
  }
  return text;
}

inline bool IsDecimal(char c) { return c >= '0' && c <= '9'; }
inline bool IsHex(char c) {
  return IsDecimal(c) || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

struct Decoded {
  std::string octets;
  bool good;
};

// Skips blanks; ends at the first other character that is no digit. An odd last digit is a high
// half.
inline Decoded Decode(std::string_view text) {
  std::string digits;
  std::size_t at = 0;
  for (; at < text.size() && (IsHex(text[at]) || text[at] == ' '); ++at) {
    if (text[at] != ' ') digits += text[at];
  }
  if (digits.size() % 2 == 1) digits += '0';
  Decoded decoded{"", at == text.size()};
  for (std::size_t i = 0; i < digits.size(); i += 2) {
    decoded.octets += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
  }
  return decoded;
}

}  // namespace orvane_fuzz
