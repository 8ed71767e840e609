#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "host/decode/decoding.h"

namespace host {

// The kinds of data that can be decoded, under their names on the command line.
std::vector<std::string> DecodedKinds();

// Prints data of a kind field by field. The data is hexadecimal text with or without white space.
// Throws Failure (kScriptFault) if the data is wrong, after printing what could be read.
void PrintDecoded(std::ostream& out, std::string_view kind, std::string_view text);

// The lines for the value of a data object. `parent` is the tag of the object around it; empty if
// there is none. Gives no lines if the meaning of such a value is not known or the value is
// malformed.
std::vector<std::string> ValueLines(std::string_view tag, std::string_view parent,
                                    std::string_view value);

}  // namespace host
