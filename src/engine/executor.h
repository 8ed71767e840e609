#pragma once

#include <cstdint>

namespace orvane {

struct ScriptEngine;

// Finds out which form the statement in engine.tokens has, computes its value, and stores it or
// leaves it in engine.resultText. Gives ScriptDone, 1 for a failed operand (the text is then the
// message and no variable has changed), or ScriptException.
std::int32_t ExecuteTokens(ScriptEngine& engine);

}  // namespace orvane
