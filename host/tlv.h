#pragma once

#include <cstddef>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// One element of BER-TLV data. Tag and value are hexadecimal digits of the text that was read.
struct TlvElement {
  std::string_view tag;
  std::string_view value;
  std::string_view parent;  // the tag of the element around it; empty if there is none
  size_t level;             // how many elements stand around it
  bool constructed;
};

// The octets of the tag that digits begin with; 0 if it is cut or has more than four.
size_t TagOctets(std::string_view digits);

// Reads BER-TLV data as ISO/IEC 7816-4 has it: tags of one to four octets, lengths of up to five,
// 00 between elements as filler. The text is whole octets, without blanks. Hands over each
// element as it is read, a parent before its children. Gives why the rest could not be read; the
// empty text if all was.
std::string ReadTlv(std::string_view digits, const std::function<void(const TlvElement&)>& take);

// The lines of one element, indented by its level: tag, length in bytes, name; then its value, with
// characters beside the octets, and what it says where that is known. From level 64 on the indent
// stays, and the level stands as a number before the tag.
std::vector<std::string> TlvLines(const TlvElement& element);

// Prints the tree of BER-TLV data, given as hexadecimal text with or without white space. Throws
// Failure after printing what could be read.
void PrintTlv(std::ostream& out, std::string_view text);

}  // namespace host
