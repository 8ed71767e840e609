#include "host/command.h"

#include <orvane.h>

#include <algorithm>
#include <array>

#include "host/failure.h"
#include "host/text.h"

namespace host {
namespace {

// The interindustry instructions whose responses have no data field.
constexpr std::array<unsigned, 27> kSilent = {0x04, 0x0E, 0x20, 0x21, 0x22, 0x24, 0x25, 0x26, 0x28,
                                              0x2C, 0x2D, 0x44, 0x82, 0xD0, 0xD2, 0xD6, 0xD7, 0xDA,
                                              0xDB, 0xDC, 0xDD, 0xE0, 0xE2, 0xE4, 0xE6, 0xE8, 0xFE};

}  // namespace

std::string_view CardCommand::Part(size_t begin, size_t end) const {
  return std::string_view(digits).substr(2 * begin, 2 * (end - begin));
}

Framing FramingOf(int32_t kind) { return kind == ReaderKindTcp ? Framing::kRaw : Framing::kApdu; }

CardCommand ReadCommand(std::string_view text, Framing framing) {
  CardCommand command;
  command.digits = UpperCase(WithoutBlanks(text));
  command.framing = framing;
  const std::string& digits = command.digits;
  const auto bad =
      std::find_if_not(text.begin(), text.end(), [](char c) { return IsHexDigit(c) || c == ' '; });
  if (digits.empty()) throw Failure(kScriptFault, "the command is empty; nothing sent");
  if (bad != text.end()) {
    throw Failure(kScriptFault, "the command has no hexadecimal digit at character " +
                                    std::to_string(bad - text.begin() + 1) + "; nothing sent");
  }
  if (digits.size() % 2 != 0) {
    throw Failure(kScriptFault, "the command has an odd number of digits (" +
                                    std::to_string(digits.size()) + "); nothing sent");
  }
  if (command.Octets() > kMostCommandOctets) {
    throw Failure(kScriptFault, "the command has " + std::to_string(command.Octets()) +
                                    " bytes, more than the 4096 that can be sent; nothing sent");
  }
  if (framing == Framing::kRaw) {
    command.dataBegin = std::min(command.dataBegin, command.Octets());
    command.dataEnd = command.Octets();
    return command;
  }
  if (command.Octets() < 4) {
    throw Failure(kScriptFault, "the command has " + Counted(command.Octets(), "byte") +
                                    ", its header alone needs 4; nothing sent");
  }
  static_cast<recordings::CommandParts&>(command) = recordings::FindParts(digits);
  return command;
}

bool CarriesSecret(const CardCommand& command) {
  return command.framing == Framing::kApdu && recordings::CarriesSecret(command.digits);
}

bool MayBringData(const CardCommand& command) {
  // Interindustry classes without secure messaging: 00 to 03, and 10 to 13 in a chain.
  const bool plain = (HexValue(command.Part(0, 1)) & 0xEC) == 0;
  const bool silent =
      std::find(kSilent.begin(), kSilent.end(), HexValue(command.Part(1, 2))) != kSilent.end();
  return !plain || !silent || command.expectedData > 0;
}

std::string_view CommandName(const CardCommand& command) {
  return command.framing == Framing::kApdu ? recordings::InstructionName(command.digits) : "";
}

}  // namespace host
