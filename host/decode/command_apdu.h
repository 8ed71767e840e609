#pragma once

#include "host/decode/decoding.h"

namespace host {

// Decodes a command APDU by ISO/IEC 7816-4. The digits are whole octets. Throws Failure
// (kScriptFault) if there are more than can be sent.
Decoding DecodeCommandApdu(std::string_view digits);

}  // namespace host
