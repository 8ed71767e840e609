#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace orvane {

struct ScriptEngine;

// Finds the form of the statement in engine.tokens, computes its value, and stores it or leaves it
// in engine.resultText. Gives ScriptDone; 1 for a failed operand (engine.resultText is then the
// message, and no variable has changed); or ScriptException.
std::int32_t ExecuteTokens(ScriptEngine& engine);

// Evaluates the argument that begins at `position` and joins its operands. On success `position` is
// at the argument's last token. On failure `position` stays where the failing operand left it, and
// `argument` holds the text so far, followed by that of the failing operand.
bool EvaluateArgument(ScriptEngine& engine, std::size_t& position, std::string& argument);

}  // namespace orvane
