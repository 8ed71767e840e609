#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "host/decode/decoding.h"

namespace host {

// The kinds of data that can be decoded, as the command line names them.
std::vector<std::string> DecodedKinds();

// Prints data of a kind, given as hexadecimal text with or without white space, field by field.
// Throws Failure (kScriptFault) for what is wrong with it, after printing what could be read.
void PrintDecoded(std::ostream& out, std::string_view kind, std::string_view text);

// The lines of the value of a data object, by its tag and that of the object around it (empty if
// there is none); none if nothing is known of such a value, or if it is not as it should be.
std::vector<std::string> ValueLines(std::string_view tag, std::string_view parent,
                                    std::string_view value);

}  // namespace host
