#pragma once

#include <cstddef>
#include <string>

namespace orvane {

struct ScriptEngine;

// Evaluates the argument that begins at `position`: its operands side by side, joined. On success
// `position` stands on the argument's last token. On failure it stays where the failing operand
// left it, and `argument` holds the text so far with that of the failing operand behind it.
bool EvaluateArgument(ScriptEngine& engine, std::size_t& position, std::string& argument);

}  // namespace orvane
