#pragma once

#include "host/decode/decoding.h"

namespace host {

// Adds the meaning of an answer to reset's historical bytes (ISO/IEC 7816-4); at least one byte.
void AddHistoricalBytes(Decoding& decoding, std::string_view digits);

}  // namespace host
