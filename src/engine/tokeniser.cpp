#include "engine/tokeniser.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "engine/engine.h"
#include "engine/executor.h"

namespace orvane {
namespace {

constexpr std::int32_t kRefused = 1;

consteval std::array<TokenClass, 256> MakeTokenClasses() {
  std::array<TokenClass, 256> classes;
  classes.fill(ClassLiteral);
  classes['%'] = ClassVariable;
  classes['@'] = ClassCall;
  classes[','] = ClassComma;
  classes['('] = ClassOpen;
  classes[')'] = ClassClose;
  classes['='] = ClassEquals;
  classes['$'] = ClassDollar;
  return classes;
}

constexpr auto kTokenClasses = MakeTokenClasses();

consteval std::array<bool, 256> MakeWordCharacters() {
  std::array<bool, 256> characters;
  characters.fill(true);
  for (const char c : std::string_view(" \t=(),/;"))
    characters[static_cast<unsigned char>(c)] = false;
  return characters;
}

// Characters that only ever make a word longer, wherever they stand.
constexpr auto kWordCharacters = MakeWordCharacters();

// Fills engine.tokens, or gives the code that ends the statement before it runs.
std::int32_t Split(ScriptEngine& engine) {
  auto& tokens = engine.tokens;
  const char* word = engine.statement.data();
  const char* const end = word + engine.statement.size();
  for (const char* next = word;; ++next) {
    while (next != end && kWordCharacters[static_cast<unsigned char>(*next)]) ++next;
    if (next == end) break;
    engine.tokenCount = static_cast<std::int32_t>(tokens.size());
    const bool isBlank = *next == ' ' || *next == '\t';
    if (!isBlank) {
      const bool isFirst = engine.tokenCount == 0 && word == next;
      const bool isComment = *next == '/' || *next == ';';
      if (isComment && isFirst) return ScriptNothingToRun;
      if (isComment || (*next == '=' && engine.tokenCount > 1)) continue;
      if (isFirst && *next != '=') return kRefused;
    }
    if (word != next) tokens.emplace_back(word, next);
    if (!isBlank) tokens.emplace_back(next, next + 1);
    word = next + 1;
  }
  if (word != end) tokens.emplace_back(word, end);
  return ScriptDone;
}

}  // namespace

TokenClass ClassifyToken(std::string_view token) {
  return token.empty() ? ClassEmpty : kTokenClasses[static_cast<unsigned char>(token.front())];
}

std::int32_t Tokenise(ScriptEngine& engine) {
  if (engine.statement.empty()) return ScriptNothingToRun;
  const std::int32_t code = Split(engine);
  if (code != ScriptDone) return code;
  MergeLiteralRuns(engine);
  return ExecuteTokens(engine);
}

void MergeLiteralRuns(ScriptEngine& engine) {
  char* const text = engine.statement.data();
  auto& tokens = engine.tokens;
  auto next = tokens.begin();
  TokenClass before = ClassEmpty;
  for (const std::string_view token : tokens) {
    const TokenClass tokenClass = ClassifyToken(token);
    if (tokenClass == ClassLiteral && before == ClassLiteral) {
      std::string_view& run = next[-1];
      std::memmove(text + (run.data() - text) + run.size(), token.data(), token.size());
      run = {run.data(), run.size() + token.size()};
    } else {
      *next++ = token;
    }
    before = tokenClass;
  }
  tokens.erase(next, tokens.end());
}

}  // namespace orvane
