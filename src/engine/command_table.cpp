#include "engine/command_table.h"

#include <algorithm>

namespace orvane {
namespace {

struct CommandRow {
  std::string_view keyword;  // in upper case
  CommandEntry entry;
};

constexpr CommandRow kCommandTable[] = {
    {"@RESET", {0, kReset}},
    {"@STOP", {0, kStop}},
    {"@STRMID", {3, kStrMid}},
    {"@STRMIDH", {3, kStrMidH}},
    {"@COMPARE", {2, kCompare}},
    {"@SETREADER", {1, kSetReader}},
    {"@SETSLOT", {1, kSetSlot}},
    {"@STRLEN", {1, kStrLen}},
    {"@STRLENH", {1, kStrLenH}},
    {"@DES", {3, kDes}},
    {"@DESCBC", {4, kDesCbc}},
    {"@MAC", {4, kMac}},
    {"@XOR", {2, kXor}},
    {"@ASC2HEX", {1, kAscToHex}},
    {"@HEX2ASC", {1, kHexToAsc}},
    {"@SUBKEY", {2, kSubKey}},
    {"@OPENREADER", {1, kOpenReader}},
    {"@RSAPUBENC", {3, kRsaPubEnc}},
    {"@HASH", {1, kHash}},
};

bool MatchesUpper(char upper, char c) {
  return (c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c) == upper;
}

}  // namespace

CommandEntry FindCommand(std::string_view keyword) {
  for (const CommandRow& row : kCommandTable) {
    if (row.keyword.size() == keyword.size() &&
        std::equal(row.keyword.begin(), row.keyword.end(), keyword.begin(), MatchesUpper)) {
      return row.entry;
    }
  }
  return {0, kNoCommand};
}

}  // namespace orvane
