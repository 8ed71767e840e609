#include "host/status_word.h"

#include <algorithm>
#include <array>
#include <string>

#include "host/text.h"

namespace host {
namespace {

struct Meaning {
  unsigned value;
  std::string_view text;
};

constexpr std::array kWords = std::to_array<Meaning>({
    {0x9000, "success"},
    {0x6281, "warning: part of the returned data may be corrupted"},
    {0x6282, "warning: end of file or record reached before Le bytes were read"},
    {0x6283, "warning: selected file deactivated"},
    {0x6284, "warning: file control information badly formatted"},
    {0x6285, "warning: selected file in termination state"},
    {0x6286, "warning: no input data from a sensor on the card"},
    {0x6287, "warning: at least one referenced record is deactivated"},
    {0x6300, "warning: not authenticated, or no further information"},
    {0x6340, "warning: unsuccessful comparison"},
    {0x6381, "warning: file filled up by the last write"},
    {0x6401, "immediate response required by the card"},
    {0x6481, "logical channel shared access denied"},
    {0x6482, "logical channel opening denied"},
    {0x6581, "memory failure"},
    {0x6700, "wrong length"},
    {0x6701, "command APDU format not compliant with the standard"},
    {0x6702, "Lc is not the one expected"},
    {0x6881, "logical channel not supported"},
    {0x6882, "secure messaging not supported"},
    {0x6883, "last command of the chain expected"},
    {0x6884, "command chaining not supported"},
    {0x6981, "command incompatible with file structure"},
    {0x6982, "security status not satisfied"},
    {0x6983, "authentication method blocked"},
    {0x6984, "reference data not usable"},
    {0x6985, "conditions of use not satisfied"},
    {0x6986, "command not allowed: no current EF"},
    {0x6987, "expected secure messaging data objects missing"},
    {0x6988, "incorrect secure messaging data objects"},
    {0x6A80, "incorrect parameters in the command data field"},
    {0x6A81, "function not supported"},
    {0x6A82, "file or application not found"},
    {0x6A83, "record not found"},
    {0x6A84, "not enough memory space in the file"},
    {0x6A85, "Lc inconsistent with TLV structure"},
    {0x6A86, "incorrect parameters P1-P2"},
    {0x6A87, "Lc inconsistent with parameters P1-P2"},
    {0x6A88, "referenced data or reference data not found"},
    {0x6A89, "file already exists"},
    {0x6A8A, "DF name already exists"},
    {0x6B00, "wrong parameters P1-P2"},
    {0x6D00, "instruction code not supported or invalid"},
    {0x6E00, "class not supported"},
    {0x6F00, "no precise diagnosis"},
});

// The meaning of the first byte, where the second one has none of its own.
constexpr std::array kClasses = std::to_array<Meaning>({
    {0x62, "warning: state of non-volatile memory unchanged"},
    {0x63, "warning: state of non-volatile memory may have changed"},
    {0x64, "execution error: state of non-volatile memory unchanged"},
    {0x65, "execution error: state of non-volatile memory may have changed"},
    {0x66, "execution error: security-related issue"},
    {0x67, "wrong length"},
    {0x68, "function in CLA not supported"},
    {0x69, "command not allowed"},
    {0x6A, "wrong parameters P1-P2"},
    {0x6B, "wrong parameters P1-P2"},
    {0x6D, "instruction code not supported or invalid"},
    {0x6E, "class not supported"},
    {0x6F, "no precise diagnosis"},
});

// 0 for a text that is no status word.
unsigned ValueOf(std::string_view statusWord) {
  const bool isOne =
      statusWord.size() == 4 && std::all_of(statusWord.begin(), statusWord.end(), IsHexDigit);
  return isOne ? HexValue(statusWord) : 0;
}

// In these words 00 means 256.
size_t BytesTold(unsigned value) { return (value & 0xFF) == 0 ? 256 : value & 0xFF; }

}  // namespace

Standing StandingOf(std::string_view statusWord) {
  const unsigned value = ValueOf(statusWord);
  if (value == 0x9000 || value >> 8 == 0x61) return Standing::kSuccess;
  return value >> 8 == 0x62 || value >> 8 == 0x63 ? Standing::kWarning : Standing::kError;
}

bool LooksLikeStatusWord(std::string_view digits) {
  const unsigned value = ValueOf(digits);
  return value >> 12 == 0x9 || (value >> 12 == 0x6 && value >> 8 != 0x60);
}

std::optional<size_t> DataOffered(std::string_view statusWord) {
  const unsigned value = ValueOf(statusWord);
  if (value >> 8 != 0x61 && value >> 8 != 0x6C) return std::nullopt;
  return BytesTold(value);
}

std::string DescribeStatusWord(std::string_view statusWord) {
  const unsigned value = ValueOf(statusWord);
  if (value >> 8 == 0x61) return Counted(BytesTold(value), "more byte") + " available";
  if (value >> 8 == 0x6C) {
    return "wrong Le: exactly " + Counted(BytesTold(value), "byte") + " available";
  }
  if (value >> 4 == 0x63C) {
    const unsigned tries = value & 0xF;
    return "warning: " + std::to_string(tries) + (tries == 1 ? " try left" : " tries left");
  }
  for (const Meaning& word : kWords) {
    if (word.value == value) return std::string(word.text);
  }
  for (const Meaning& group : kClasses) {
    if (group.value == value >> 8) return std::string(group.text);
  }
  if (value >> 12 == 0x9) return "proprietary status word";
  return "not a status word";
}

}  // namespace host
