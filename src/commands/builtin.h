#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "engine/engine.h"

namespace orvane {

// Runs the call whose keyword stands at `position`. On success `out` is the command's value and
// `position` stands on the token that closes the call. A word without "(" behind it, or that is
// no keyword, gives false with both untouched; a failed argument gives false with its text in
// `out` and `position` where it failed. Calls nest 128 deep; a deeper one fails with the empty
// text.
bool RunBuiltin(ScriptEngine& engine, std::string& out, std::size_t& position);

// One running call, as the body of its command sees it. `position` stands on the first argument
// when the body begins (on the keyword, for a command without arguments) and must stand on the
// token that closes the call when it ends. `out` is not cleared: a body that leaves it alone has
// no value.
struct CommandCall {
  ScriptEngine& engine;
  std::string& out;
  std::size_t& position;

  // Evaluates the argument at `position`. When that fails its text becomes the call's value.
  bool Read(std::string& argument);

  // Steps over the token behind an argument, which should be a comma, and reads the next one.
  bool ReadNext(std::string& argument);

  // Steps onto the token behind the last argument, which should be the ")".
  void Close() { ++position; }

  // Makes a text, or octets as hexadecimal text, the call's value. A value above 16 MiB throws
  // std::bad_alloc: a short statement of nested calls could take all memory otherwise.
  void Give(std::string_view text);
  void GiveHex(const unsigned char* octets, std::size_t count);
};

// The body of a command: true if it ran to its end.
using CommandBody = bool(CommandCall& call);

// Cutting, measuring and comparing text. The commands with an H count in octets of hexadecimal
// text, two characters each, which they do not examine.
CommandBody StrMid, StrMidH, StrLen, StrLenH, Compare;

// The octets behind hexadecimal text. Blanks in it are skipped, the first other character that is
// no digit ends it, and the octets from there on read as 00.
CommandBody Xor, AscToHex, HexToAsc;

// Questions to the host: they mark the statement and pass their argument on.
CommandBody ResetRequest, StopRequest, SetReaderRequest, SetSlotRequest, OpenReaderRequest;

// Cryptography: these prepare the arguments and shape the results of the provider's entries
// (crypto_provider.h), and compute nothing themselves. A value that is longer than its area, an
// entry that is not to be had and a result of an impossible length make a command fail with its
// value unchanged.
CommandBody Des, DesCbc, Mac, SubKey, RsaPubEnc, Hash;

}  // namespace orvane
