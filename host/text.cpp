#include "host/text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>

namespace host {
namespace {

// True for control characters and those that change the writing direction or break lines.
bool SteersTerminal(char32_t c) {
  return c < 0x20 || (c >= 0x7F && c < 0xA0) || (c >= 0x2028 && c <= 0x202E) ||
         (c >= 0x2066 && c <= 0x2069);
}

// The octets of the printable UTF-8 character at the text's beginning; 0 if there is none.
size_t PrintableLength(std::string_view text) {
  constexpr std::array<char32_t, 5> kLowest = {0, 0, 0x80, 0x800, 0x10000};
  const auto first = static_cast<unsigned char>(text[0]);
  const auto length = static_cast<size_t>(std::countl_one(first));
  if (length == 0) return SteersTerminal(first) ? 0 : 1;
  if (length == 1 || length > 4 || length > text.size()) return 0;
  char32_t c = first & (0x7Fu >> length);
  for (const char more : text.substr(1, length - 1)) {
    const auto octet = static_cast<unsigned char>(more);
    if ((octet & 0xC0) != 0x80) return 0;
    c = c << 6 | (octet & 0x3F);
  }
  const bool character =
      c >= kLowest[length] && c <= 0x10FFFF && (c < 0xD800 || c > 0xDFFF) && !SteersTerminal(c);
  return character ? length : 0;
}

}  // namespace

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool IsHexDigit(char c) { return IsDigit(c) || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f'); }

bool BeginsCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }

bool IsDecimal(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), IsDigit);
}

std::string UpperCase(std::string_view text) {
  std::string upper(text);
  for (char& c : upper) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return upper;
}

std::string WithoutBlanks(std::string_view text) {
  std::string rest(text);
  std::erase(rest, ' ');
  return rest;
}

std::string Printable(std::string_view text) {
  std::string shown;
  size_t begin = 0;  // of the part that is not copied yet
  for (size_t at = 0; at < text.size();) {
    const bool plain = text[at] >= ' ' && text[at] <= '~';
    const size_t length = plain ? 1 : PrintableLength(text.substr(at));
    at += std::max<size_t>(length, 1);
    if (length > 0) continue;
    shown += text.substr(begin, at - 1 - begin);
    shown += "\\x" + HexOctet(static_cast<unsigned char>(text[at - 1]));
    begin = at;
  }
  return shown += text.substr(begin);
}

std::string SpacedOctets(std::string_view digits) {
  std::string spaced;
  for (size_t at = 0; at < digits.size(); at += 2) {
    if (at > 0) spaced += ' ';
    spaced += digits.substr(at, 2);
  }
  return spaced;
}

std::string AsCharacters(std::string_view digits) {
  std::string characters;
  for (size_t at = 0; at + 1 < digits.size(); at += 2) {
    const unsigned octet = HexValue(digits.substr(at, 2));
    characters += octet >= 0x20 && octet < 0x7F ? static_cast<char>(octet) : '.';
  }
  return characters;
}

std::vector<OctetRow> OctetRows(std::string_view digits) {
  std::vector<OctetRow> rows;
  for (size_t at = 0; at < digits.size(); at += 2 * kRowOctets) {
    const std::string_view row = digits.substr(at, 2 * kRowOctets);
    rows.push_back({SpacedOctets(row), AsCharacters(row)});
    rows.back().octets.resize(3 * kRowOctets + 1, ' ');
  }
  return rows;
}

unsigned HexValue(std::string_view digits) {
  unsigned value = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
  return value;
}

std::string HexOctet(unsigned octet) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  return {kDigits[octet >> 4 & 0xF], kDigits[octet & 0xF]};
}

size_t ColumnOf(std::string_view text, size_t at) {
  const std::string_view before = text.substr(0, at);
  return static_cast<size_t>(std::count_if(before.begin(), before.end(), BeginsCharacter)) + 1;
}

std::string MarkedAt(std::string_view text, size_t at) {
  constexpr size_t kAround = 30;
  const size_t begin = at > kAround ? at - kAround : 0;
  std::string shown = begin > 0 ? "..." : "";
  std::string mark(shown.size(), ' ');
  for (size_t each = begin; each < std::min(text.size(), at + kAround); ++each) {
    const char c = text[each];
    if (!BeginsCharacter(c)) continue;
    shown += c == '\t' ? ' ' : c >= ' ' && c <= '~' ? c : '?';
    if (each < at) mark += ' ';
  }
  return "\n  " + shown + (at + kAround < text.size() ? "..." : "") + "\n  " + mark + '^';
}

std::string Masked(std::string_view text) {
  std::string masked(text);
  for (char& c : masked) {
    if (c != ' ' && c != '\t' && BeginsCharacter(c)) c = '*';
  }
  return masked;
}

std::string Counted(size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace host
