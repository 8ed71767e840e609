#pragma once

#include "host/decode/decoding.h"

namespace host {

// Decode data objects of EMV book 3. The digits are whole octets.

Decoding DecodeDol(std::string_view digits);  // data object list
Decoding DecodeAfl(std::string_view digits);  // application file locator
Decoding DecodeAip(std::string_view digits);  // application interchange profile
Decoding DecodeTvr(std::string_view digits);  // terminal verification results
Decoding DecodeCvm(std::string_view digits);  // cardholder verification method list

}  // namespace host
