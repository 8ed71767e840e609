#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "engine/engine.h"

namespace orvane {

// Runs the call whose keyword is the token at `position`. On success `out` is the command's value
// and `position` is at the token that closes the call. If the word is no keyword or no "(" follows
// it, the result is false and both stay as they are. If an argument fails, the result is false,
// `out` holds the argument's text, and `position` is where it failed. Calls nest 128 deep; a deeper
// one fails with the empty text.
bool RunBuiltin(ScriptEngine& engine, std::string& out, std::size_t& position);

// One running call, as the body of its command sees it. When the body begins, `position` is at the
// first argument (at the keyword, for a command without arguments). When the body ends, `position`
// must be at the token that closes the call. A body that does not set `out` has no value of its
// own: nothing clears `out` before.
struct CommandCall {
  ScriptEngine& engine;
  std::string& out;
  std::size_t& position;

  // Evaluates the argument at `position`. If that fails, its text becomes the call's value.
  bool Read(std::string& argument);

  // Steps over the token behind an argument, which should be a comma, and reads the next one.
  bool ReadNext(std::string& argument);

  // Steps onto the token behind the last argument, which should be the ")".
  void Close() { ++position; }

  // Makes a text, or octets as hexadecimal text, the call's value. Throws std::bad_alloc above 16
  // MiB: otherwise a short statement of nested calls could take all memory.
  void Give(std::string_view text);
  void GiveHex(const unsigned char* octets, std::size_t count);
};

// The body of a command: true if it ran to its end.
using CommandBody = bool(CommandCall& call);

// Cut, measure and compare text. The commands with an H count octets of hexadecimal text, two
// characters each. They do not check the characters.
CommandBody StrMid, StrMidH, StrLen, StrLenH, Compare;

// Work on the octets of hexadecimal text. Blanks are skipped. The first other character that is no
// digit ends the text, and the octets from there on read as 00.
CommandBody Xor, AscToHex, HexToAsc;

// Ask something of the host: each marks the statement's kind and passes its argument on.
CommandBody ResetRequest, StopRequest, SetReaderRequest, SetSlotRequest, OpenReaderRequest;

// Cryptography. These prepare the arguments and shape the results of the provider's entries
// (crypto_provider.h), and compute nothing themselves. A command fails, with its value unchanged,
// if an argument is longer than its area, the entry is missing, or the result's length is
// impossible.
CommandBody Des, DesCbc, Mac, SubKey, RsaPubEnc, Hash;

}  // namespace orvane
