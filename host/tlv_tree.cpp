#include "host/tlv_tree.h"

#include <orvane.h>

#include <algorithm>

#include "host/failure.h"
#include "host/text.h"

namespace host {
namespace {

constexpr size_t kRowOctets = 16;
constexpr size_t kDeepestIndent = 64;  // in levels

}  // namespace

std::string TagName(std::string_view tag) {
  TagdictData record;
  if (FindTagdictData(std::string(tag).c_str(), &record) == 0) return "";
  return Printable(record.shortText);
}

std::vector<std::string> TlvLines(const TlvElement& element) {
  const std::string indent(2 * std::min(element.level, kDeepestIndent), ' ');
  std::string head = indent;
  if (element.level > kDeepestIndent) head += std::to_string(element.level) + "> ";
  head += UpperCase(element.tag) + "  " + std::to_string(element.value.size() / 2);
  if (const std::string name = TagName(element.tag); !name.empty()) head += "  " + name;
  std::vector<std::string> lines = {head};
  if (element.constructed) return lines;
  for (size_t at = 0; at < element.value.size(); at += 2 * kRowOctets) {
    const std::string_view row = element.value.substr(at, 2 * kRowOctets);
    std::string octets = SpacedOctets(UpperCase(row));
    octets.resize(3 * kRowOctets + 1, ' ');
    lines.push_back(indent + "    " + octets + AsCharacters(row));
  }
  return lines;
}

void PrintTlv(std::ostream& out, std::string_view text) {
  std::string digits(text);
  std::erase_if(digits, [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); });
  if (digits.empty()) throw Failure(kScriptFault, "there is no data");
  const auto wrong = std::find_if_not(digits.begin(), digits.end(), IsHexDigit);
  if (wrong != digits.end()) {
    throw Failure(kScriptFault, "'" + Printable({&*wrong, 1}) + "' is no hexadecimal digit");
  }
  const std::string fault = ReadTlv(digits, [&out](const TlvElement& element) {
    for (const std::string& line : TlvLines(element)) out << line << '\n';
  });
  if (!fault.empty()) throw Failure(kScriptFault, "no BER-TLV: " + fault);
}

}  // namespace host
