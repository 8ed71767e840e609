#pragma once

#include <string>
#include <string_view>

namespace host {

// Applies Printable to each line of the text.
std::string PrintableLines(const std::string& text);

// Escapes a text for XML and HTML, between tags and in attributes. Line ends stay. Characters that
// these cannot write become octets.
std::string Markup(const std::string& text);

}  // namespace host
