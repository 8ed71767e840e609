#pragma once

#include <cstddef>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// One element of BER-TLV data. Tag and value are digits of the text that was read.
struct TlvElement {
  std::string_view tag;
  std::string_view value;
  std::string_view parent;  // the tag of the element around it; empty if there is none
  size_t level;             // the number of elements around it
  bool constructed;
};

// The number of octets of the tag at the beginning of digits; 0 if it is cut off or has more than
// four.
size_t TagOctets(std::string_view digits);

// Reads BER-TLV data by ISO/IEC 7816-4: tags of one to four octets, lengths of up to five, 00
// between elements as filler. The digits are whole octets, without blanks. Passes each element to
// `take` as it is read, a parent before its children. Gives the empty text, or why the rest could
// not be read.
std::string ReadTlv(std::string_view digits, const std::function<void(const TlvElement&)>& take);

// The lines for one element, indented by its level: tag, length in bytes, name; then its value as
// octets and characters, with its meaning if known. From level 64 on the indent stays the same, and
// the level stands as a number before the tag.
std::vector<std::string> TlvLines(const TlvElement& element);

// Prints the tree of BER-TLV data. The text is hexadecimal, with or without white space. Throws
// Failure after printing what could be read.
void PrintTlv(std::ostream& out, std::string_view text);

}  // namespace host
