#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "engine/engine.h"

namespace orvane {

// What a token is, by its first character alone.
enum TokenClass : unsigned char {
  ClassVariable = 0,  // %
  ClassLiteral = 1,   // any character not named here
  ClassCall = 2,      // @
  ClassComma = 3,
  ClassOpen = 4,
  ClassClose = 5,
  ClassEquals = 6,
  ClassDollar = 7,
  ClassEmpty = 100  // the empty text
};

TokenClass ClassifyToken(std::string_view token);

// The token at a position. At or past the end it is the empty text, whose class is ClassEmpty.
inline std::string_view TokenAt(const ScriptEngine& engine, std::size_t position) {
  return position < engine.tokens.size() ? engine.tokens[position] : std::string_view();
}

// Splits engine.statement into engine.tokens and runs them. Gives the result of ExecuteTokens, 1
// for a statement that begins with a separator, or ScriptNothingToRun.
std::int32_t Tokenise(ScriptEngine& engine);

// Makes one token of each run of adjacent literals. Moves their texts together in engine.statement,
// over the blanks between them.
void MergeLiteralRuns(ScriptEngine& engine);

}  // namespace orvane
