#pragma once

#include "host/decode/decoding.h"

namespace host {

// Decodes an answer to reset by ISO/IEC 7816-3, and its historical bytes by ISO/IEC 7816-4. The
// digits are whole octets.
Decoding DecodeAtr(std::string_view digits);

}  // namespace host
