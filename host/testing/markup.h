#pragma once

#include <string>
#include <string_view>

namespace host {

// Each line of the text as Printable has it.
std::string PrintableLines(const std::string& text);

// The text, its line ends left, as XML and HTML take it between tags and in attributes. Characters
// that they have no way to write stand as octets.
std::string Markup(const std::string& text);

}  // namespace host
