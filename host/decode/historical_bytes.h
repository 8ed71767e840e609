#pragma once

#include "host/decode/decoding.h"

namespace host {

// Adds what the historical bytes of an answer to reset say by ISO/IEC 7816-4: one at least.
void AddHistoricalBytes(Decoding& decoding, std::string_view digits);

}  // namespace host
