#include "commands/builtin.h"

#include <array>
#include <new>

#include "commands/crypto_commands.h"
#include "commands/data_commands.h"
#include "commands/reader_commands.h"
#include "commands/text_commands.h"
#include "engine/command_table.h"
#include "engine/executor.h"
#include "engine/tokeniser.h"
#include "util/hex.h"

namespace orvane {
namespace {

constexpr std::int32_t kDeepestCall = 128;
constexpr std::size_t kLongestValue = 16 << 20;

consteval std::array<CommandBody, kCommandCount> MakeBodies() {
  std::array<CommandBody, kCommandCount> bodies{};
  bodies[kReset] = ResetRequest;
  bodies[kStop] = StopRequest;
  bodies[kStrMid] = StrMid;
  bodies[kStrMidH] = StrMidH;
  bodies[kCompare] = Compare;
  bodies[kSetReader] = SetReaderRequest;
  bodies[kSetSlot] = SetSlotRequest;
  bodies[kStrLen] = StrLen;
  bodies[kStrLenH] = StrLenH;
  bodies[kDes] = Des;
  bodies[kDesCbc] = DesCbc;
  bodies[kMac] = Mac;
  bodies[kXor] = Xor;
  bodies[kAscToHex] = AscToHex;
  bodies[kHexToAsc] = HexToAsc;
  bodies[kSubKey] = SubKey;
  bodies[kOpenReader] = OpenReaderRequest;
  bodies[kRsaPubEnc] = RsaPubEnc;
  bodies[kHash] = Hash;
  return bodies;
}

constexpr auto kBodies = MakeBodies();

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

bool Call::Read(std::string& argument) {
  if (EvaluateArgument(engine, position, argument)) return true;
  out = argument;
  return false;
}

bool Call::ReadNext(std::string& argument) {
  position += 2;
  return Read(argument);
}

void Call::Give(std::string_view text) {
  CheckSize(text.size());
  out = text;
}

void Call::GiveHex(const unsigned char* octets, std::size_t count) {
  CheckSize(2 * count);
  out.resize(2 * count);
  EncodeHex(octets, count, out.data());
}

bool RunBuiltin(ScriptEngine& engine, std::string& out, std::size_t& position) try {
  if (ClassifyToken(TokenAt(engine, position + 1)) != ClassOpen) return false;
  const CommandEntry command = FindCommand(TokenAt(engine, position));
  const CommandBody body = kBodies[static_cast<std::size_t>(command.commandId)];
  if (body == nullptr) return false;

  const DepthGuard guard(engine.callDepth);
  if (engine.callDepth > kDeepestCall) {
    out.clear();
    return false;
  }
  if (command.argumentCount > 0) position += 2;
  Call call{engine, out, position};
  return body(call);
} catch (...) {
  return false;
}

}  // namespace orvane
