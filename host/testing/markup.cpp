#include "host/testing/markup.h"

#include <array>
#include <sstream>
#include <utility>

#include "host/text.h"

namespace host {

std::string PrintableLines(const std::string& text) {
  std::istringstream in(text);
  std::ostringstream lines;
  const char* end = "";
  for (std::string line; std::getline(in, line); end = "\n") lines << end << Printable(line);
  return lines.str();
}

std::string Markup(const std::string& text) {
  constexpr std::array<std::pair<std::string_view, std::string_view>, 6> kWritten = {
      {{"&", "&amp;"},
       {"<", "&lt;"},
       {">", "&gt;"},
       {"\"", "&quot;"},
       {"\uFFFE", "\\xEF\\xBF\\xBE"},
       {"\uFFFF", "\\xEF\\xBF\\xBF"}}};
  std::string written = PrintableLines(text);
  for (const auto& [character, name] : kWritten) {
    for (size_t at = 0; (at = written.find(character, at)) != written.npos; at += name.size()) {
      written.replace(at, character.size(), name);
    }
  }
  return written;
}

}  // namespace host
