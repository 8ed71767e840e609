#pragma once

#include <cstddef>
#include <string>

namespace orvane {

struct ScriptEngine;

// Runs the call whose keyword stands at `position`. On success `out` is the command's value and
// `position` stands on the token that closes the call. A word without "(" behind it, or that is
// no keyword, gives false with both untouched; a failed argument gives false with its text in
// `out` and `position` where it failed. Calls nest 128 deep; a deeper one fails with the empty
// text.
bool RunBuiltin(ScriptEngine& engine, std::string& out, std::size_t& position);

}  // namespace orvane
