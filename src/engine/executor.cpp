#include "engine/executor.h"

#include <string_view>
#include <utility>

#include "commands/builtin.h"
#include "engine/engine.h"
#include "engine/tokeniser.h"

namespace orvane {
namespace {

constexpr std::int32_t kFailedOperand = 1;

bool IsAssignment(const ScriptEngine& engine) {
  const TokenClass target = ClassifyToken(TokenAt(engine, 0));
  return (target == ClassVariable || target == ClassLiteral) && engine.tokens.size() > 2 &&
         ClassifyToken(TokenAt(engine, 1)) == ClassEquals;
}

// Evaluates an operand of an argument. Fails if its call fails or the token is no operand.
bool EvaluateOperand(ScriptEngine& engine, std::size_t& position, std::string& operand) try {
  const std::string_view token = TokenAt(engine, position);
  switch (ClassifyToken(token)) {
    case ClassVariable:
      return GetVariable(engine, token, operand) == ScriptDone;
    case ClassLiteral:
      operand = token;
      return true;
    case ClassCall:
      return RunBuiltin(engine, operand, position);
    default:
      return false;
  }
} catch (...) {
  return false;
}

bool IsOperand(std::string_view token) {
  const TokenClass tokenClass = ClassifyToken(token);
  return tokenClass == ClassVariable || tokenClass == ClassLiteral || tokenClass == ClassCall;
}

// Evaluates an operand of the statement itself. A call that fails still gives a value, and a token
// that is no operand gives the empty one. `value` is the operand's own text or a view of `text`. If
// the operand fails, `text` holds the message.
bool EvaluateStatementOperand(ScriptEngine& engine, std::string& text, std::string_view& value,
                              std::size_t& position) try {
  text.clear();
  value = TokenAt(engine, position);
  switch (ClassifyToken(value)) {
    case ClassVariable:
      if (const std::string* const stored = FindVariable(engine, value)) {
        value = *stored;
        return true;
      }
      GetVariable(engine, value, text);
      return false;
    case ClassLiteral:
      return true;
    case ClassCall:
      RunBuiltin(engine, text, position);
      value = text;
      return true;
    default:
      value = {};
      return true;
  }
} catch (...) {
  return false;
}

// Where the value of the next operand goes. Asked anew each time: a command may change the kind.
std::string* Collector(ScriptEngine& engine, std::string& assigned) {
  switch (engine.statementKind) {
    case KindAssignment:
      return &assigned;
    case KindExpression:
      return &engine.resultText;
    default:
      return nullptr;
  }
}

std::int32_t Finish(ScriptEngine& engine, std::string_view target, std::string& assigned) {
  if (engine.statementKind == KindAssignment) {
    // A statement without tokens has no target; SetVariable refuses the empty name.
    if (SetVariable(engine, target, assigned) == ScriptException) return ScriptException;
    engine.resultText = std::move(assigned);
  } else if (engine.statementKind == KindExpression) {
    UpperCase(engine.resultText);
  }
  return ScriptDone;
}

}  // namespace

std::int32_t ExecuteTokens(ScriptEngine& engine) try {
  std::string_view target;
  std::string text;
  std::string_view value;
  std::string assigned;
  std::size_t position = 0;
  if (IsAssignment(engine)) {
    target = TokenAt(engine, 0);
    position = 2;
  } else if (!engine.tokens.empty()) {
    engine.statementKind =
        ClassifyToken(TokenAt(engine, 0)) == ClassDollar ? KindDollar : KindExpression;
  }
  for (; position < engine.tokens.size(); ++position) {
    std::string* const collector = Collector(engine, assigned);
    if (collector == nullptr) break;
    if (!EvaluateStatementOperand(engine, text, value, position)) {
      engine.resultText = std::move(text);
      return kFailedOperand;
    }
    *collector += value;
  }
  return Finish(engine, target, assigned);
} catch (...) {
  return ScriptException;
}

bool EvaluateArgument(ScriptEngine& engine, std::size_t& position, std::string& argument) {
  argument.clear();
  if (!EvaluateOperand(engine, position, argument)) return false;
  if (!IsOperand(TokenAt(engine, position + 1))) return true;

  // An operand that gives no text repeats the text of the one before it.
  std::string part = argument;
  do {
    ++position;
    const bool evaluated = EvaluateOperand(engine, position, part);
    argument += part;
    if (!evaluated) return false;
  } while (IsOperand(TokenAt(engine, position + 1)));
  return true;
}

}  // namespace orvane
