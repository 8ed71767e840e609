#include "tags/slow_parser.h"

#include <algorithm>
#include <cctype>

namespace orvane_test {
namespace {

unsigned long long Number(const std::string& digits) {
  return std::stoull("0" + digits, nullptr, 16);
}

std::string Upper(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

}  // namespace

bool SlowParser::Parse(std::string text) {
  std::erase(text, ' ');
  if (text.empty()) return false;
  for (const char c : text) {
    if (!std::isxdigit(static_cast<unsigned char>(c))) return false;
  }
  while (!text.empty()) {
    if (text.size() < 4) return false;
    const std::string tag = Upper(text.substr(0, 2));
    const std::string lengthText = Upper(text.substr(2, 2));
    if ((Number(tag) & 0x1F) == 0x1F) return false;
    text.erase(0, 4);
    unsigned long long length = Number(lengthText);
    if (length >= 0x80) {
      const auto digits = static_cast<std::size_t>(2 * (length & 0x7F));
      if (digits == 0 || digits > 8 || digits > text.size()) return false;
      length = Number(text.substr(0, digits));
      text.erase(0, digits);
    }
    if (2 * length > text.size() || 2 * length > 2046) return false;
    const std::string value = Upper(text.substr(0, static_cast<std::size_t>(2 * length)));
    text.erase(0, value.size());
    std::string record = lengthText + std::string(2, '\0') + value;
    record.resize(2050, '\0');
    records[tag] = record;
    if ((Number(tag) & 0x20) != 0 && !Parse(value)) return false;
  }
  return true;
}

}  // namespace orvane_test
