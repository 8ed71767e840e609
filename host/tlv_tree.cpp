#include "host/tlv_tree.h"

#include <orvane.h>

#include <algorithm>

#include "host/failure.h"
#include "host/text.h"

namespace host {
namespace {

constexpr size_t kRowOctets = 16;

}  // namespace

std::string TagName(std::string_view tag) {
  TagdictData record;
  if (FindTagdictData(std::string(tag).c_str(), &record) == 0) return "";
  return Printable(record.shortText);
}

std::vector<std::string> TlvLines(const std::vector<TlvElement>& elements) {
  std::vector<std::string> lines;
  for (const TlvElement& element : elements) {
    const std::string indent(2 * element.level, ' ');
    std::string head =
        indent + UpperCase(element.tag) + "  " + std::to_string(element.value.size() / 2);
    if (const std::string name = TagName(element.tag); !name.empty()) head += "  " + name;
    lines.push_back(head);
    if (element.constructed) continue;
    for (size_t at = 0; at < element.value.size(); at += 2 * kRowOctets) {
      const std::string_view row = element.value.substr(at, 2 * kRowOctets);
      std::string octets = SpacedOctets(UpperCase(row));
      octets.resize(3 * kRowOctets + 1, ' ');
      lines.push_back(indent + "    " + octets + AsCharacters(row));
    }
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
  const Tlv tlv = ReadTlv(digits);
  for (const std::string& line : TlvLines(tlv.elements)) out << line << '\n';
  if (!tlv.fault.empty()) throw Failure(kScriptFault, "no BER-TLV: " + tlv.fault);
}

}  // namespace host
