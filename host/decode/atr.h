#pragma once

#include "host/decode/decoding.h"

namespace host {

// An answer to reset as ISO/IEC 7816-3 has it, and its historical bytes as ISO/IEC 7816-4 has them.
// The digits are whole octets.
Decoding DecodeAtr(std::string_view digits);

}  // namespace host
