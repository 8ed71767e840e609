#pragma once

#include "commands/call.h"

namespace orvane {

// Cutting, measuring and comparing text. The commands with an H count in octets of hexadecimal
// text, two characters each, which they do not examine.
bool StrMid(Call& call);
bool StrMidH(Call& call);
bool StrLen(Call& call);
bool StrLenH(Call& call);
bool Compare(Call& call);

}  // namespace orvane
