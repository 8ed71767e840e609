#pragma once

#include <cstdint>
#include <string_view>

namespace orvane {

enum CommandId : std::int32_t {
  kNoCommand,
  kReset,
  kStop,
  kStrMid,
  kStrMidH,
  kCompare,
  kSetReader,
  kSetSlot,
  kStrLen,
  kStrLenH,
  kDes,
  kDesCbc,
  kMac,
  kXor,
  kAscToHex,
  kHexToAsc,
  kSubKey,
  kOpenReader,
  kRsaPubEnc,
  kHash,
  kCommandCount
};

struct CommandEntry {
  std::int32_t argumentCount;  // only zero or not counts: the bodies read what they need
  CommandId commandId;
};

// The entry of a keyword, written in either case with its @; all zero for any other word.
CommandEntry FindCommand(std::string_view keyword);

}  // namespace orvane
