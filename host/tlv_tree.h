#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "host/tlv.h"

namespace host {

// The lines of one element, indented by its level: tag, length in bytes, name; then its value, with
// characters beside the octets, and what it says where that is known. From level 64 on the indent
// stays, and the level stands as a number before the tag.
std::vector<std::string> TlvLines(const TlvElement& element);

// Prints the tree of BER-TLV data, given as hexadecimal text with or without white space. Throws
// Failure after printing what could be read.
void PrintTlv(std::ostream& out, std::string_view text);

}  // namespace host
