#include "commands/builtin.h"

#include <algorithm>
#include <new>

#include "engine/executor.h"
#include "engine/tokeniser.h"
#include "util/any_case.h"
#include "util/hex.h"

namespace orvane {
namespace {

constexpr std::int32_t kDeepestCall = 128;
constexpr std::size_t kLongestValue = 16 << 20;

struct CommandEntry {
  std::string_view keyword;    // in upper case
  std::int32_t argumentCount;  // only zero or non-zero matters: the bodies read what they need
  std::int32_t commandId;      // the number of the command: its place in the table, from 1
  CommandBody* body;
};

constexpr CommandEntry kCommandTable[] = {
    {"@RESET", 0, 1, ResetRequest},
    {"@STOP", 0, 2, StopRequest},
    {"@STRMID", 3, 3, StrMid},
    {"@STRMIDH", 3, 4, StrMidH},
    {"@COMPARE", 2, 5, Compare},
    {"@SETREADER", 1, 6, SetReaderRequest},
    {"@SETSLOT", 1, 7, SetSlotRequest},
    {"@STRLEN", 1, 8, StrLen},
    {"@STRLENH", 1, 9, StrLenH},
    {"@DES", 3, 10, Des},
    {"@DESCBC", 4, 11, DesCbc},
    {"@MAC", 4, 12, Mac},
    {"@XOR", 2, 13, Xor},
    {"@ASC2HEX", 1, 14, AscToHex},
    {"@HEX2ASC", 1, 15, HexToAsc},
    {"@SUBKEY", 2, 16, SubKey},
    {"@OPENREADER", 1, 17, OpenReaderRequest},
    {"@RSAPUBENC", 3, 18, RsaPubEnc},
    {"@HASH", 1, 19, Hash},
};

// Null if the word is no keyword.
const CommandEntry* FindCommand(std::string_view word) {
  const auto matches = [](char c, char upper) { return UpperCase(c) == upper; };
  for (const CommandEntry& entry : kCommandTable) {
    if (std::equal(word.begin(), word.end(), entry.keyword.begin(), entry.keyword.end(), matches)) {
      return &entry;
    }
  }
  return nullptr;
}

class DepthGuard {
 public:
  explicit DepthGuard(std::int32_t& depth) : depth_(++depth) {}
  ~DepthGuard() { --depth_; }
  DepthGuard(const DepthGuard&) = delete;
  DepthGuard& operator=(const DepthGuard&) = delete;

 private:
  std::int32_t& depth_;
};

void CheckSize(std::size_t size) {
  if (size > kLongestValue) throw std::bad_alloc();
}

}  // namespace

bool CommandCall::Read(std::string& argument) {
  if (EvaluateArgument(engine, position, argument)) return true;
  out = argument;
  return false;
}

bool CommandCall::ReadNext(std::string& argument) {
  position += 2;
  return Read(argument);
}

void CommandCall::Give(std::string_view text) {
  CheckSize(text.size());
  out = text;
}

void CommandCall::GiveHex(const unsigned char* octets, std::size_t count) {
  CheckSize(2 * count);
  out.resize(2 * count);
  EncodeHex(octets, count, out.data());
}

bool RunBuiltin(ScriptEngine& engine, std::string& out, std::size_t& position) try {
  if (ClassifyToken(TokenAt(engine, position + 1)) != ClassOpen) return false;
  const CommandEntry* const command = FindCommand(TokenAt(engine, position));
  if (command == nullptr) return false;

  const DepthGuard guard(engine.callDepth);
  if (engine.callDepth > kDeepestCall) {
    out.clear();
    return false;
  }
  if (command->argumentCount > 0) position += 2;
  CommandCall call{engine, out, position};
  return command->body(call);
} catch (...) {
  return false;
}

}  // namespace orvane
