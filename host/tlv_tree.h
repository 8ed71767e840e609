#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "host/tlv.h"

namespace host {

// A tag's short text in the dictionary of the current directory; empty if it has none.
std::string TagName(std::string_view tag);

// A line an element, indented by its level: tag, length in bytes, name. Values have lines of their
// own, with characters beside the octets.
std::vector<std::string> TlvLines(const std::vector<TlvElement>& elements);

// Prints the tree of BER-TLV data, given as hexadecimal text with or without white space. Throws
// Failure after printing what could be read.
void PrintTlv(std::ostream& out, std::string_view text);

}  // namespace host
