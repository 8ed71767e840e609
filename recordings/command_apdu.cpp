#include "recordings/command_apdu.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace recordings {
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

// Searched first if the class is proprietary.
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

// PC/SC's commands to the reader of a contactless card, under the class FF.
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

// Zeros mean one more than the largest number of these digits.
size_t ReadLe(std::string_view digits) {
  const size_t count = Value(digits);
  return count == 0 && !digits.empty() ? size_t{1} << (4 * digits.size()) : count;
}

// PUT DATA with an odd instruction imports keys, unless its data begins with an object's tag.
bool PutsDataObject(std::string_view digits) {
  if (Value(digits.substr(2, 2)) != 0xDB || digits.size() < 10) return false;
  const size_t data = digits.substr(8, 2) == "00" ? 14 : 10;
  return digits.size() >= data + 2 && Value(digits.substr(data, 2)) == 0x5C;
}

}  // namespace

CommandParts FindParts(std::string_view digits) {
  if (digits.size() < 8) return {};
  const auto octets = digits.size() / 2;
  const auto part = [&](size_t begin, size_t end) {
    return digits.substr(2 * begin, 2 * (end - begin));
  };
  CommandParts parts;
  if (octets <= 5) {
    parts.dataBegin = parts.dataEnd = octets;
    parts.expectedData = ReadLe(part(4, octets));
    return parts;
  }
  const bool extended = part(4, 5) == "00";
  const size_t begin = extended ? 7 : 5;
  if (extended && octets == 7) {  // no data: the field behind the header is Le, not Lc
    parts.dataBegin = parts.dataEnd = octets;
    parts.expectedData = ReadLe(part(5, octets));
    return parts;
  }
  const size_t length = octets < begin ? 0 : Value(part(extended ? 5 : 4, begin));
  const size_t end = begin + length;
  const size_t expected = extended ? 2 : 1;
  parts.lengthFits = length > 0 && (octets == end || octets == end + expected);
  parts.dataBegin = parts.lengthFits ? begin : 4;
  parts.dataEnd = parts.lengthFits ? end : octets;
  parts.expectedData = ReadLe(part(parts.dataEnd, octets));
  return parts;
}

bool CarriesSecret(std::string_view beginning) {
  if (beginning.size() < 4) return false;
  const Instruction* instruction = Find(beginning);
  return instruction != nullptr && instruction->secret && !PutsDataObject(beginning);
}

std::string_view InstructionName(std::string_view beginning) {
  if (beginning.size() < 4) return "";
  const Instruction* instruction = Find(beginning);
  return instruction != nullptr ? instruction->name : "";
}

std::string WithoutData(std::string digits, const CommandParts& parts) {
  const size_t begin = std::min(2 * parts.dataBegin, digits.size());
  const size_t end = std::clamp(2 * parts.dataEnd, begin, digits.size());
  std::fill(digits.begin() + static_cast<std::ptrdiff_t>(begin),
            digits.begin() + static_cast<std::ptrdiff_t>(end), '*');
  return digits;
}

}  // namespace recordings
