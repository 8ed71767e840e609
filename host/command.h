#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "recordings/command_apdu.h"

namespace host {

// How a command's octets are read. Most readers take APDUs (ISO/IEC 7816-4); a payment HSM takes
// octets of its own protocol.
enum class Framing { kApdu, kRaw };

Framing FramingOf(int32_t kind);  // of a reader's kind

// A command that may be sent, and the parts of an APDU. In raw octets, everything behind the first
// four is data.
struct CardCommand : recordings::CommandParts {
  std::string digits;  // upper-case hexadecimal, two digits an octet, nothing else
  Framing framing = Framing::kApdu;
  size_t Octets() const { return digits.size() / 2; }
  // The digits of the octets from begin up to end.
  std::string_view Part(size_t begin, size_t end) const;
};

// Reads hexadecimal text, blanks allowed, as a command. Throws Failure (kScriptFault) unless it is
// whole octets, at least a header's four (kRaw: one) and at most 4,096, the library's limit. The
// message quotes nothing of the text.
CardCommand ReadCommand(std::string_view text, Framing framing);

// The most octets that the library sends.
inline constexpr size_t kMostCommandOctets = 4096;

// False for instructions whose responses have no data field by ISO/IEC 7816-4, if the class is
// plain interindustry and there is no Le.
bool MayBringData(const CardCommand& command);

// True if the data field carries a PIN or a key.
bool CarriesSecret(const CardCommand& command);
using recordings::CarriesSecret;

// The instruction's name; empty if it has none.
std::string_view CommandName(const CardCommand& command);

}  // namespace host
