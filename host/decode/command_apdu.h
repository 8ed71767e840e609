#pragma once

#include "host/decode/decoding.h"

namespace host {

// A command APDU as ISO/IEC 7816-4 has it; the digits are whole octets. Throws Failure
// (kScriptFault) for more than can be sent.
Decoding DecodeCommandApdu(std::string_view digits);

}  // namespace host
