#include "engine/tokeniser.h"

#include <algorithm>

#include "engine/engine.h"
#include "engine/executor.h"

namespace orvane {
namespace {

constexpr std::int32_t kRefused = 1;

/// The words and separators of a statement, written over its own text from the front.
class TokenWriter {
 public:
  explicit TokenWriter(ScriptEngine& engine)
      : engine_(engine), word_(engine.statement.data()), end_(word_) {}

  bool AtStart() const { return engine_.tokenCount == 0 && word_ == end_; }
  void Append(char c) { *end_++ = c; }

  void Flush() {
    if (word_ == end_) return;
    engine_.tokens.emplace_back(word_, static_cast<std::size_t>(end_ - word_));
    word_ = end_;
  }

  void AddSeparator(char c) {
    Flush();
    Append(c);
    Flush();
  }

 private:
  ScriptEngine& engine_;
  char* word_;
  char* end_;
};

/// Fills engine.tokens, or gives the code that ends the statement before anything is executed.
std::int32_t Split(ScriptEngine& engine) {
  TokenWriter writer(engine);
  for (const char c : engine.statement) {
    engine.tokenCount = static_cast<std::int32_t>(engine.tokens.size());
    if (c == ' ') {
      writer.Flush();
    } else if (c == '=' && engine.tokenCount <= 1) {
      writer.AddSeparator(c);
    } else if (c == '(' || c == ')' || c == ',') {
      if (writer.AtStart()) return kRefused;
      writer.AddSeparator(c);
    } else if ((c == '/' || c == ';') && writer.AtStart()) {
      return ScriptNothingToRun;
    } else {
      writer.Append(c);
    }
  }
  writer.Flush();
  return ScriptDone;
}

}  // namespace

TokenClass ClassifyToken(std::string_view token) {
  if (token.empty()) return ClassEmpty;
  switch (token.front()) {
    case '%':
      return ClassVariable;
    case '@':
      return ClassCall;
    case ',':
      return ClassComma;
    case '(':
      return ClassOpen;
    case ')':
      return ClassClose;
    case '=':
      return ClassEquals;
    case '$':
      return ClassDollar;
    default:
      return ClassLiteral;
  }
}

std::string_view TokenAt(const ScriptEngine& engine, std::size_t position) {
  return position < engine.tokens.size() ? engine.tokens[position] : std::string_view();
}

std::int32_t Tokenise(ScriptEngine& engine) {
  std::replace(engine.statement.begin(), engine.statement.end(), '\t', ' ');
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
