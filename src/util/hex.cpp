#include "util/hex.h"

#include <array>

namespace orvane {
namespace {

consteval std::array<unsigned char, 256> MakeDigitValues() {
  std::array<unsigned char, 256> values{};
  for (auto& value : values) value = kBadDigit;
  for (unsigned char i = 0; i < 16; ++i) {
    const auto digit = static_cast<unsigned char>(kHexDigits[i]);
    values[digit] = i;
    if (i > 9) values[digit | 0x20U] = i;
  }
  return values;
}

constexpr auto kDigitValues = MakeDigitValues();

}  // namespace

unsigned HexDigitValue(char c) { return kDigitValues[static_cast<unsigned char>(c)]; }

void EncodeHex(const unsigned char* octets, std::size_t count, char* text) {
  const auto digit = [](unsigned value) {
    return static_cast<char>(value < 10 ? value + '0' : value + ('A' - 10));
  };
  for (std::size_t i = 0; i < count; ++i) {
    text[2 * i] = digit(octets[i] >> 4U);
    text[2 * i + 1] = digit(octets[i] & 15U);
  }
}

bool DecodeHex(std::string_view text, unsigned char* octets) {
  const char* next = text.data();
  const char* const end = next + text.size();
  const auto skipBlanks = [&] {
    while (next != end && *next == ' ') ++next;
  };
  const auto takeOctet = [&] {
    if (end - next < 2) return false;
    const unsigned high = HexDigitValue(next[0]);
    if (high == kBadDigit) return false;
    const unsigned low = HexDigitValue(next[1]);
    if (low == kBadDigit) return false;
    *octets++ = static_cast<unsigned char>(high << 4 | low);
    next += 2;
    return true;
  };
  for (;;) {
    // The common forms: packed digits, or one blank between octets.
    while (takeOctet()) continue;
    while (next != end && *next == ' ') {
      ++next;
      if (!takeOctet()) break;
    }
    skipBlanks();
    if (next == end) return true;
    const unsigned high = HexDigitValue(*next++);
    if (high == kBadDigit) return false;
    *octets = static_cast<unsigned char>(high << 4);
    skipBlanks();
    if (next == end) return true;
    const unsigned low = HexDigitValue(*next++);
    if (low == kBadDigit) return false;
    *octets++ |= static_cast<unsigned char>(low);
  }
}

}  // namespace orvane
