#include "host/text.h"

#include <algorithm>
#include <charconv>

namespace host {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool IsHexDigit(char c) { return IsDigit(c) || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f'); }

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
  std::string shown(text);
  std::replace_if(
      shown.begin(), shown.end(),
      [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, '.');
  return shown;
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
    unsigned octet = 0;
    std::from_chars(digits.data() + at, digits.data() + at + 2, octet, 16);
    characters += octet >= 0x20 && octet < 0x7F ? static_cast<char>(octet) : '.';
  }
  return characters;
}

std::string Counted(size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace host
