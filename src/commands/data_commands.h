#pragma once

#include "commands/call.h"

namespace orvane {

// Commands on the octets behind hexadecimal text. Blanks in a text are skipped, the first other
// character that is no digit ends it, and the octets from there on read as 00.
bool Xor(Call& call);
bool AscToHex(Call& call);
bool HexToAsc(Call& call);

}  // namespace orvane
