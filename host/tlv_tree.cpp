#include "host/tlv_tree.h"

#include <algorithm>

#include "host/decode/decode.h"
#include "host/decode/tag_list.h"
#include "host/failure.h"
#include "host/text.h"
#include "host/text_input.h"

namespace host {
namespace {

constexpr size_t kRowOctets = 16;
constexpr size_t kDeepestIndent = 64;  // in levels

}  // namespace

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
  for (const std::string& line : ValueLines(element.tag, element.parent, element.value)) {
    lines.push_back(indent + "    " + line);
  }
  return lines;
}

void PrintTlv(std::ostream& out, std::string_view text) {
  const std::string fault = ReadTlv(DigitsIn(text), [&out](const TlvElement& element) {
    for (const std::string& line : TlvLines(element)) out << line << '\n';
  });
  if (!fault.empty()) throw Failure(kScriptFault, "no BER-TLV: " + fault);
}

}  // namespace host
