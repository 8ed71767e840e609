#pragma once

// Builds BER-TLV data objects (ISO/IEC 7816-4, definite lengths).

#include <initializer_list>

#include "common/octets.h"

namespace simulator {

// A primitive data object. The tag is the number that its octets form, such as 0x5A or 0x9F38.
Octets Tlv(uint32_t tag, const Octets& value);
Octets Tlv(uint32_t tag, std::string_view hexadecimalValue);

// A constructed data object that holds these data objects.
Octets Tlv(uint32_t tag, std::initializer_list<Octets> parts);

}  // namespace simulator
