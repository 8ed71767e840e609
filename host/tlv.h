#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// One element of BER-TLV data. Tag and value are hexadecimal digits of the text that was read.
struct TlvElement {
  std::string_view tag;
  std::string_view value;
  size_t level;  // how many elements stand around it
  bool constructed;
};

struct Tlv {
  std::vector<TlvElement> elements;  // a parent before its children
  std::string fault;                 // why the rest could not be read; empty if all was read
};

// Reads BER-TLV data as ISO/IEC 7816-4 has it: tags of one to four octets, lengths of up to five,
// 00 between elements as filler. The text is hexadecimal digits without blanks.
Tlv ReadTlv(std::string_view digits);

}  // namespace host
