#include "common/octets.h"

namespace simulator {
namespace {

constexpr std::string_view kDigits = "0123456789ABCDEF";

int DigitValue(char digit) {
  if (digit >= 'a' && digit <= 'f') digit = static_cast<char>(digit - 'a' + 'A');
  const auto place = kDigits.find(digit);
  return place == std::string_view::npos ? -1 : static_cast<int>(place);
}

}  // namespace

Octets FromHex(std::string_view text) {
  Octets octets;
  int high = -1;
  for (const char character : text) {
    if (character == ' ') continue;
    const int value = DigitValue(character);
    if (value < 0) break;
    if (high < 0) {
      high = value;
    } else {
      octets.push_back(static_cast<uint8_t>(high << 4 | value));
      high = -1;
    }
  }
  return octets;
}

std::string ToHex(std::span<const uint8_t> octets) {
  std::string text;
  text.reserve(2 * octets.size());
  for (const uint8_t octet : octets) {
    text += kDigits[octet >> 4];
    text += kDigits[octet & 0x0F];
  }
  return text;
}

Octets FromText(std::string_view text) { return {text.begin(), text.end()}; }

}  // namespace simulator
