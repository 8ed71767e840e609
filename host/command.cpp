#include "host/command.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "host/failure.h"
#include "host/text.h"

namespace host {
namespace {

struct Instruction {
  unsigned code;
  std::string_view name;
  bool secret = false;
};

constexpr std::array kInterindustry = std::to_array<Instruction>({
    {0x04, "DEACTIVATE FILE"},
    {0x0E, "ERASE BINARY"},
    {0x20, "VERIFY", true},
    {0x21, "VERIFY", true},
    {0x22, "MANAGE SECURITY ENVIRONMENT"},
    {0x24, "CHANGE REFERENCE DATA", true},
    {0x25, "CHANGE REFERENCE DATA", true},
    {0x26, "DISABLE VERIFICATION REQUIREMENT", true},
    {0x28, "ENABLE VERIFICATION REQUIREMENT", true},
    {0x2A, "PERFORM SECURITY OPERATION"},
    {0x2C, "RESET RETRY COUNTER", true},
    {0x2D, "RESET RETRY COUNTER", true},
    {0x44, "ACTIVATE FILE"},
    {0x46, "GENERATE ASYMMETRIC KEY PAIR"},
    {0x48, "IMPORT CARD SECRET", true},
    {0x70, "MANAGE CHANNEL"},
    {0x82, "EXTERNAL AUTHENTICATE"},
    {0x84, "GET CHALLENGE"},
    {0x86, "GENERAL AUTHENTICATE"},
    {0x87, "GENERAL AUTHENTICATE"},
    {0x88, "INTERNAL AUTHENTICATE"},
    {0xA4, "SELECT"},
    {0xB0, "READ BINARY"},
    {0xB1, "READ BINARY"},
    {0xB2, "READ RECORD"},
    {0xB3, "READ RECORD"},
    {0xC0, "GET RESPONSE"},
    {0xC2, "ENVELOPE"},
    {0xCA, "GET DATA"},
    {0xCB, "GET DATA"},
    {0xD0, "WRITE BINARY"},
    {0xD2, "WRITE RECORD"},
    {0xD6, "UPDATE BINARY"},
    {0xD7, "UPDATE BINARY"},
    {0xDA, "PUT DATA"},
    {0xDB, "PUT DATA", true},
    {0xDC, "UPDATE RECORD"},
    {0xDD, "UPDATE RECORD"},
    {0xE0, "CREATE FILE"},
    {0xE2, "APPEND RECORD"},
    {0xE4, "DELETE FILE"},
    {0xE6, "TERMINATE DF"},
    {0xE8, "TERMINATE EF"},
    {0xFE, "TERMINATE CARD USAGE"},
});

// Looked at first where the class is proprietary.
constexpr std::array kProprietary = std::to_array<Instruction>({
    {0x16, "CARD BLOCK"},
    {0x18, "APPLICATION UNBLOCK"},
    {0x1E, "APPLICATION BLOCK"},
    {0x24, "PIN CHANGE/UNBLOCK", true},
    {0x50, "INITIALIZE UPDATE"},
    {0x5E, "CHANGE PIN", true},
    {0xA8, "GET PROCESSING OPTIONS"},
    {0xAE, "GENERATE AC"},
    {0xD4, "WRITE KEY", true},
    {0xD8, "PUT KEY", true},
    {0xE2, "STORE DATA"},
    {0xE4, "DELETE"},
    {0xE6, "INSTALL"},
    {0xE8, "LOAD"},
    {0xF0, "SET STATUS"},
    {0xF2, "GET STATUS"},
});

// The interindustry instructions whose responses have no data field.
constexpr std::array<unsigned, 27> kSilent = {0x04, 0x0E, 0x20, 0x21, 0x22, 0x24, 0x25, 0x26, 0x28,
                                              0x2C, 0x2D, 0x44, 0x82, 0xD0, 0xD2, 0xD6, 0xD7, 0xDA,
                                              0xDB, 0xDC, 0xDD, 0xE0, 0xE2, 0xE4, 0xE6, 0xE8, 0xFE};

// What PC/SC does with a contactless card's reader, under the class FF.
constexpr std::array kForReader = std::to_array<Instruction>({
    {0x82, "LOAD KEYS", true},
});

unsigned Value(std::string_view digits) {
  unsigned value = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
  return value;
}

const Instruction* Find(std::string_view classAndInstruction) {
  const unsigned code = Value(classAndInstruction.substr(2, 2));
  const auto isIt = [code](const Instruction& i) { return i.code == code; };
  if (Value(classAndInstruction.substr(0, 2)) == 0xFF) {
    const auto found = std::find_if(kForReader.begin(), kForReader.end(), isIt);
    if (found != kForReader.end()) return &*found;
  }
  if ((Value(classAndInstruction.substr(0, 2)) & 0x80) != 0) {
    const auto found = std::find_if(kProprietary.begin(), kProprietary.end(), isIt);
    if (found != kProprietary.end()) return &*found;
  }
  const auto found = std::find_if(kInterindustry.begin(), kInterindustry.end(), isIt);
  return found != kInterindustry.end() ? &*found : nullptr;
}

// Zeros stand for one more than the digits can say.
size_t ReadLe(std::string_view digits) {
  const size_t count = Value(digits);
  return count == 0 && !digits.empty() ? size_t{1} << (4 * digits.size()) : count;
}

// Sorts the octets behind the header into length field, data and Le (short and extended forms).
void FindData(CardCommand& command) {
  const size_t octets = command.Octets();
  if (octets <= 5) {
    command.dataBegin = command.dataEnd = octets;
    command.expectedData = ReadLe(command.Part(4, octets));
    return;
  }
  const bool extended = command.Part(4, 5) == "00";
  const size_t begin = extended ? 7 : 5;
  if (extended && octets == 7) {  // no data: what looks like Lc is Le
    command.dataBegin = command.dataEnd = octets;
    command.expectedData = ReadLe(command.Part(5, octets));
    return;
  }
  const size_t length = octets < begin ? 0 : Value(command.Part(extended ? 5 : 4, begin));
  const size_t end = begin + length;
  const size_t expected = extended ? 2 : 1;
  command.lengthFits = length > 0 && (octets == end || octets == end + expected);
  command.dataBegin = command.lengthFits ? begin : 4;
  command.dataEnd = command.lengthFits ? end : octets;
  command.expectedData = ReadLe(command.Part(command.dataEnd, octets));
}

// PUT DATA with an odd instruction imports keys, unless its data begin with the tag of an object.
bool PutsDataObject(std::string_view digits) {
  if (Value(digits.substr(2, 2)) != 0xDB || digits.size() < 10) return false;
  const size_t data = digits.substr(8, 2) == "00" ? 14 : 10;
  return digits.size() >= data + 2 && Value(digits.substr(data, 2)) == 0x5C;
}

}  // namespace

std::string_view CardCommand::Part(size_t begin, size_t end) const {
  return std::string_view(digits).substr(2 * begin, 2 * (end - begin));
}

CardCommand ReadCommand(std::string_view text, Framing framing) {
  CardCommand command;
  command.digits = UpperCase(WithoutBlanks(text));
  command.framing = framing;
  const std::string& digits = command.digits;
  const auto bad =
      std::find_if_not(text.begin(), text.end(), [](char c) { return IsHexDigit(c) || c == ' '; });
  if (digits.empty()) throw Failure(kScriptFault, "the command is empty; nothing sent");
  if (bad != text.end()) {
    throw Failure(kScriptFault, "the command is not hexadecimal: character " +
                                    std::to_string(bad - text.begin() + 1) + " of " +
                                    std::to_string(text.size()) + " is no digit; nothing sent");
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
  FindData(command);
  return command;
}

bool CarriesSecret(std::string_view beginning) {
  const Instruction* instruction = Find(beginning);
  return instruction != nullptr && instruction->secret && !PutsDataObject(beginning);
}

bool CarriesSecret(const CardCommand& command) {
  return command.framing == Framing::kApdu && CarriesSecret(command.digits);
}

bool MayBringData(const CardCommand& command) {
  // Interindustry classes without secure messaging: 00 to 03, and 10 to 13 in a chain.
  const bool plain = (Value(command.Part(0, 1)) & 0xEC) == 0;
  const bool silent =
      std::find(kSilent.begin(), kSilent.end(), Value(command.Part(1, 2))) != kSilent.end();
  return !plain || !silent || command.expectedData > 0;
}

std::string_view CommandName(const CardCommand& command) {
  if (command.framing == Framing::kRaw) return "";
  const Instruction* instruction = Find(command.digits);
  return instruction != nullptr ? instruction->name : "";
}

}  // namespace host
