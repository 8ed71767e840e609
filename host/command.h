#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "recordings/command_apdu.h"

namespace host {

// What a command's octets are: most readers take APDUs (ISO/IEC 7816-4), a payment HSM
// takes whatever its protocol says.
enum class Framing { kApdu, kRaw };

Framing FramingOf(int32_t kind);  // of a reader's kind

// A command that may be sent, and the parts of an APDU. In raw octets all behind the first four
// stands as data.
struct CardCommand : recordings::CommandParts {
  std::string digits;  // upper-case hexadecimal, two an octet, nothing else
  Framing framing = Framing::kApdu;
  size_t Octets() const { return digits.size() / 2; }
  // The digits of the octets from begin to end.
  std::string_view Part(size_t begin, size_t end) const;
};

// Takes hexadecimal text, blanks allowed, as a command. Throws Failure (kScriptFault) unless it is
// whole octets, at least a header's four (kRaw: one) and at most 4,096, which is what the library
// takes. The message quotes nothing of the text.
CardCommand ReadCommand(std::string_view text, Framing framing);

// The most octets that the library sends.
inline constexpr size_t kMostCommandOctets = 4096;

// False for the instructions whose responses have no data field by ISO/IEC 7816-4, in a plain
// interindustry class and without Le.
bool MayBringData(const CardCommand& command);

// True where the data field carries a PIN or a key.
bool CarriesSecret(const CardCommand& command);
using recordings::CarriesSecret;

// The instruction's name; empty if it has none.
std::string_view CommandName(const CardCommand& command);

}  // namespace host
