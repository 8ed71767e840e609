#include "host/lsp/document.h"

#include <algorithm>
#include <set>

#include "host/desk/completion.h"
#include "host/text.h"

namespace host {
namespace {

// The UTF-16 units of a character, counted at its first octet. Its other octets have none.
size_t UnitsOf(char octet) {
  constexpr unsigned char kFourOctets = 0xF0;
  if (!BeginsCharacter(octet)) return 0;
  return static_cast<unsigned char>(octet) >= kFourOctets ? 2 : 1;
}

}  // namespace

Document::Document(std::string_view text) {
  size_t begin = 0;
  for (size_t end = 0; end != text.npos;) {
    end = text.find_first_of("\r\n", begin);
    lines_.emplace_back(text.substr(begin, end == text.npos ? end : end - begin));
    begin = end + (text.substr(std::min(end, text.size()), 2) == "\r\n" ? 2 : 1);
  }
}

std::optional<Statement> Document::Read(size_t line) const try {
  if (line >= lines_.size()) return std::nullopt;
  return ReadStatement(lines_[line]);
} catch (const Failure&) {
  return std::nullopt;
}

std::optional<size_t> Document::AssignmentBefore(size_t line, std::string_view variable) const {
  const std::string name = UpperCase(variable);
  for (size_t at = std::min(line, lines_.size()); at-- > 0;) {
    if (UpperCase(StoredVariable(lines_[at])) == name) return at;
  }
  return std::nullopt;
}

std::vector<std::string> Document::VariablesBefore(size_t line) const {
  std::set<std::string> known;
  std::vector<std::string> names;
  for (size_t at = std::min(line, lines_.size()); at-- > 0;) {
    const std::string name(StoredVariable(lines_[at]));
    if (!name.empty() && known.insert(UpperCase(name)).second) names.push_back(name);
  }
  return names;
}

std::string_view StoredVariable(std::string_view line) {
  line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
  const std::string_view name = line.substr(0, line.find_first_of(kWordBreaks));
  line.remove_prefix(name.size());
  line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
  return name.starts_with('%') && line.starts_with('=') ? name : std::string_view();
}

size_t UnitsBefore(std::string_view line, size_t octet) {
  size_t units = 0;
  for (const char each : line.substr(0, octet)) units += UnitsOf(each);
  return units;
}

size_t OctetAt(std::string_view line, size_t unit) {
  size_t octet = 0;
  for (size_t units = 0; octet < line.size(); ++octet) {
    if (UnitsOf(line[octet]) != 0 && units >= unit) break;
    units += UnitsOf(line[octet]);
  }
  return octet;
}

}  // namespace host
