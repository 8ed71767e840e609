#include "util/hex.h"

#include <algorithm>
#include <array>

#include "platform/text_end.h"

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

unsigned DigitValue(char c) { return kDigitValues[static_cast<unsigned char>(c)]; }

constexpr std::size_t kBlockDigits = 64;
constexpr std::size_t kBlockOctets = kBlockDigits / 2;

// Reads a block of two digits an octet, in loops without branches, which compilers vectorise. If
// any other character is in the block, it gives false and writes nothing.
bool DecodeBlock(const char* text, unsigned char* octets) {
  std::array<unsigned char, kBlockDigits> values;
  std::array<unsigned char, kBlockDigits> letters;  // 0 to 5 for a letter, 0 for a decimal digit
  for (std::size_t i = 0; i < values.size(); ++i) {
    const auto digit = static_cast<unsigned char>(text[i] - '0');
    const auto letter = static_cast<unsigned char>((text[i] | 0x20) - 'a');
    values[i] = digit < 10 ? digit : static_cast<unsigned char>(letter + 10);
    letters[i] = digit < 10 ? 0 : letter;
  }
  unsigned char last = 0;
  for (const unsigned char letter : letters) last = std::max(last, letter);
  if (last > 5) return false;
  for (std::size_t i = 0; i < kBlockOctets; ++i) {
    octets[i] = static_cast<unsigned char>(values[2 * i] << 4 | values[2 * i + 1]);
  }
  return true;
}

bool DecodeDigits(const char* next, const char* end, unsigned char* octets) {
  while (next != end) {
    const unsigned high = DigitValue(*next++);
    if (high == kBadDigit) {
      if (next[-1] != ' ') return false;
      continue;
    }
    if (next == end || DigitValue(*next) == kBadDigit) {
      *octets = static_cast<unsigned char>(high << 4);
      while (next != end && *next == ' ') ++next;
      if (next == end) return true;
      if (DigitValue(*next) == kBadDigit) return false;
    }
    *octets++ = static_cast<unsigned char>(high << 4 | DigitValue(*next++));
    if (next != end && *next == ' ') ++next;
  }
  return true;
}

}  // namespace

unsigned HexDigitValue(char c) { return DigitValue(c); }

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
  // Reads whole blocks only where the text has not ended before its size.
  std::size_t blocks = text.size() < kBlockDigits
                           ? 0
                           : platform::LengthUpTo(text.data(), text.size()) / kBlockDigits;
  for (; blocks > 0 && DecodeBlock(text.data(), octets); --blocks) {
    text.remove_prefix(kBlockDigits);
    octets += kBlockOctets;
  }
  return DecodeDigits(text.data(), text.data() + text.size(), octets);
}

}  // namespace orvane
