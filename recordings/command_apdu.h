#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace recordings {

// The parts of a command APDU (ISO/IEC 7816-4), as positions in octets. The data begins behind the
// header and the length field and ends at dataEnd; Le, if any, follows.
struct CommandParts {
  size_t dataBegin = 4;
  size_t dataEnd = 4;
  bool lengthFits = true;   // Lc is the length of the data. If not, all behind the header is data
  size_t expectedData = 0;  // how many octets of data Le asks for
};

// Takes whole octets in upper-case hexadecimal. Fewer than the four of a header have no parts.
CommandParts FindParts(std::string_view digits);

// True if the data field carries a PIN or a key. Four digits of the command suffice for most; fewer
// give false.
bool CarriesSecret(std::string_view beginning);

// The instruction's name in ISO/IEC 7816-4 or, for a proprietary class, in GlobalPlatform and EMV;
// empty if it has none.
std::string_view InstructionName(std::string_view beginning);

// The command with a * for each digit of its data.
std::string WithoutData(std::string digits, const CommandParts& parts);

}  // namespace recordings
