#pragma once

#include <cstddef>
#include <string_view>

namespace orvane {

inline constexpr char kHexDigits[] = "0123456789ABCDEF";
inline constexpr unsigned kBadDigit = 0xFF;

// 0 to 15 for a hexadecimal digit of either case, else kBadDigit.
unsigned HexDigitValue(char c);

// Writes two upper-case digits an octet, high digit first: 2 * count characters, no terminator.
void EncodeHex(const unsigned char* octets, std::size_t count, char* text);

// Reads digits of either case, two an octet, and skips blanks. An odd last digit becomes a high
// half. The first other character ends the reading with false: the octets before it are written,
// and nothing behind it is read, so a size beyond a text's terminator does no harm. No octet is
// written before its first digit is read, so text and octets may be one area.
bool DecodeHex(std::string_view text, unsigned char* octets);

}  // namespace orvane
