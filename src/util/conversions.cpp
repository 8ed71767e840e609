#include <cstring>

#include "orvane.h"
#include "util/hex.h"

namespace {

using orvane::kBadDigit;
using orvane::kHexDigits;

bool IsDecimalDigit(char c) { return c >= '0' && c <= '9'; }

bool IsAsciiLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

// Only the low eight bits count: a character that is no digit gives a value, not an error.
unsigned EscapeDigit(char c) {
  return IsDecimalDigit(c) ? static_cast<unsigned>(c - '0')
                           : static_cast<unsigned>(static_cast<unsigned char>(c)) - 55U;
}

int32_t BigEndian(const unsigned char* octets, int32_t count) {
  uint32_t value = 0;
  for (int32_t i = 0; i < count; ++i) value = value << 8 | octets[i];
  return static_cast<int32_t>(value);
}

// The octets of value, most significant first. Gives the number of significant ones, at the right.
int32_t SignificantOctets(int32_t value, unsigned char (&octets)[4]) {
  const auto bits = static_cast<uint32_t>(value);
  for (int i = 0; i < 4; ++i) octets[i] = static_cast<unsigned char>(bits >> (24 - 8 * i));
  return bits >> 24 ? 4 : bits >> 16 ? 3 : bits >> 8 ? 2 : 1;
}

}  // namespace

void URLEncode(const char* text, char* out) {
  for (; *text != '\0'; ++text) {
    if (IsDecimalDigit(*text) || IsAsciiLetter(*text)) {
      *out++ = *text;
      continue;
    }
    const auto byte = static_cast<unsigned char>(*text);
    *out++ = '%';
    *out++ = kHexDigits[byte >> 4];
    *out++ = kHexDigits[byte & 15];
  }
}

void URLDecode(const char* text, char* out) {
  while (*text != '\0') {
    if (*text == '%' && text[1] != '\0' && text[2] != '\0') {
      *out++ = static_cast<char>((EscapeDigit(text[1]) * 16 | EscapeDigit(text[2])) & 0xFF);
      text += 3;
    } else {
      *out++ = *text == '+' ? ' ' : *text;
      ++text;
    }
  }
}

void HexToAscii(const unsigned char* octets, char* text, int32_t count) {
  if (count > 0) orvane::EncodeHex(octets, static_cast<std::size_t>(count), text);
}

int32_t AsciiToHex(const char* text, unsigned char* octets, int32_t length) {
  if (length < 1) return 1;
  return orvane::DecodeHex({text, static_cast<std::size_t>(length)}, octets) ? 1 : 0;
}

int32_t AsciiToHexStr(const char* text, char* out, int32_t length) {
  for (int32_t i = 0; i < length; ++i) {
    if (i % 2 == 0) {
      *out++ = '\\';
      *out++ = 'x';
    }
    *out++ = text[i];
  }
  return length != 0 && length % 2 == 0 ? 1 : 0;
}

int32_t CheckAsciiNum(const char* text, int32_t allowHex, int32_t length) {
  for (int32_t i = 0; i < length; ++i) {
    const bool passes =
        allowHex != 0 ? orvane::HexDigitValue(text[i]) != kBadDigit : IsDecimalDigit(text[i]);
    if (!passes) return i + 1;
  }
  return 0;
}

int32_t HexStrToInt(const char* text, int32_t* value, int32_t length) {
  unsigned char octets[4] = {};
  unsigned digits = 0;
  for (int32_t i = 0; i < length; ++i) {
    if (text[i] == ' ') continue;
    const unsigned digit = orvane::HexDigitValue(text[i]);
    if (digit == kBadDigit) return 0;
    if (digits < 8) {
      octets[digits / 2] |= static_cast<unsigned char>(digits % 2 == 0 ? digit << 4 : digit);
      ++digits;
    }
  }
  return HexToInt(octets, value, length / 2);
}

int32_t HexToInt(const unsigned char* octets, int32_t* value, int32_t count) {
  if (count < 1 || count > 4) return 0;
  *value = BigEndian(octets, count);
  return 1;
}

int32_t IntToHex(unsigned char* out, int32_t value, int32_t* count) {
  unsigned char octets[4];
  *count = SignificantOctets(value, octets);
  std::memcpy(out + 4 - *count, octets + 4 - *count, static_cast<std::size_t>(*count));
  return 1;
}

int32_t IntToHexStr(char* out, int32_t value, int32_t* length) {
  unsigned char octets[4];
  const int32_t count = SignificantOctets(value, octets);
  HexToAscii(octets + 4 - count, out, count);
  *length = 2 * count;
  return 1;
}
