#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace orvane {

struct ScriptEngine;

// What a token is, by its first character alone.
enum TokenClass {
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

// The token at a position; the empty text, which is of ClassEmpty, at or past the end.
std::string_view TokenAt(const ScriptEngine& engine, std::size_t position);

// Splits engine.statement into engine.tokens and executes them. The statement's bytes are moved
// together while it is split, blanks squeezed out, so that the tokens stand back to back in it.
// Gives what ExecuteTokens gives, or 1 for a statement that begins with a separator, or
// ScriptNothingToRun.
std::int32_t Tokenise(ScriptEngine& engine);

// Makes one token of every run of adjacent literals. They stand back to back, so a joined token
// is a longer view.
void MergeLiteralRuns(ScriptEngine& engine);

}  // namespace orvane
