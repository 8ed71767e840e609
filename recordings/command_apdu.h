#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace recordings {

// Where the parts of a command APDU (ISO/IEC 7816-4) stand, counted in octets: behind the header
// and the length field, and behind the data. The data runs from the one to the other; Le, if any,
// stands behind it.
struct CommandParts {
  size_t dataBegin = 4;
  size_t dataEnd = 4;
  bool lengthFits = true;   // Lc says how long the data is. If not, all behind the header is data
  size_t expectedData = 0;  // how many octets of data its Le asks for
};

// Of whole octets in upper-case hexadecimal digits; fewer than a header's four have no parts.
CommandParts FindParts(std::string_view digits);

// True where the data field carries a PIN or a key, as far as the beginning tells: four digits tell
// most, fewer nothing.
bool CarriesSecret(std::string_view beginning);

// The instruction's name in ISO/IEC 7816-4 or, for a proprietary class, in GlobalPlatform and EMV;
// empty if it has none.
std::string_view InstructionName(std::string_view beginning);

// The command with a * for every digit of its data.
std::string WithoutData(std::string digits, const CommandParts& parts);

}  // namespace recordings
