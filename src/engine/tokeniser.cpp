#include "engine/tokeniser.h"

#include <array>

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

// Characters that do nothing but lengthen a word, wherever they stand.
constexpr auto kWordCharacters = MakeWordCharacters();

// Fills engine.tokens, or gives the code that ends the statement before anything is executed.
std::int32_t Split(ScriptEngine& engine) {
  char* word = engine.statement.data();
  char* end = word;  // of the word, which is written over the statement's own text
  const auto flush = [&] {
    if (word == end) return;
    engine.tokens.push_back({word, static_cast<std::size_t>(end - word)});
    word = end;
  };
  const auto addSeparator = [&](char c) {
    flush();
    *end++ = c;
    flush();
  };
  const auto atStart = [&] { return engine.tokenCount == 0 && word == end; };

  for (const char c : engine.statement) {
    if (kWordCharacters[static_cast<unsigned char>(c)]) {
      *end++ = c;
      continue;
    }
    engine.tokenCount = static_cast<std::int32_t>(engine.tokens.size());
    switch (c) {
      case ' ':
      case '\t':
        flush();
        continue;
      case '=':
        if (engine.tokenCount > 1) break;
        addSeparator(c);
        continue;
      case '(':
      case ')':
      case ',':
        if (atStart()) return kRefused;
        addSeparator(c);
        continue;
      case '/':
      case ';':
        if (atStart()) return ScriptNothingToRun;
        break;
    }
    *end++ = c;
  }
  flush();
  return ScriptDone;
}

}  // namespace

TokenClass ClassifyToken(std::string_view token) {
  return token.empty() ? ClassEmpty : kTokenClasses[static_cast<unsigned char>(token.front())];
}

std::string_view TokenAt(const ScriptEngine& engine, std::size_t position) {
  return position < engine.tokens.size() ? engine.tokens[position] : std::string_view();
}

std::int32_t Tokenise(ScriptEngine& engine) {
  if (engine.statement.empty()) return ScriptNothingToRun;
  const std::int32_t code = Split(engine);
  if (code != ScriptDone) return code;
  MergeLiteralRuns(engine);
  return ExecuteTokens(engine);
}

void MergeLiteralRuns(ScriptEngine& engine) {
  auto& tokens = engine.tokens;
  auto last = tokens.begin();
  for (const std::string_view token : tokens) {
    const bool joins = last != tokens.begin() && ClassifyToken(token) == ClassLiteral &&
                       ClassifyToken(last[-1]) == ClassLiteral;
    if (joins) {
      last[-1] = {last[-1].data(), last[-1].size() + token.size()};
    } else {
      *last++ = token;
    }
  }
  tokens.erase(last, tokens.end());
}

}  // namespace orvane
