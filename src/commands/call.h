#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "engine/engine.h"

namespace orvane {

// One running call, as the body of its command sees it. `position` stands on the first argument
// when the body begins (on the keyword, for a command without arguments) and must stand on the
// token that closes the call when it ends. `out` is not cleared: a body that leaves it alone has
// no value.
struct Call {
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

// A command's body: true if it ran to its end.
using CommandBody = bool (*)(Call& call);

}  // namespace orvane
