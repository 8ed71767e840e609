#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace orvane {

struct ScriptEngine;

// Finds out which form the statement in engine.tokens has, computes its value, and stores it or
// leaves it in engine.resultText. Gives ScriptDone, 1 for a failed operand (the text is then the
// message and no variable has changed), or ScriptException.
std::int32_t ExecuteTokens(ScriptEngine& engine);

// Evaluates the argument that begins at `position`: its operands side by side, joined. On success
// `position` stands on the argument's last token. On failure it stays where the failing operand
// left it, and `argument` holds the text so far with that of the failing operand behind it.
bool EvaluateArgument(ScriptEngine& engine, std::size_t& position, std::string& argument);

}  // namespace orvane
