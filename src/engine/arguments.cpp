#include "engine/arguments.h"

#include <string_view>

#include "commands/builtin.h"
#include "engine/engine.h"
#include "engine/tokeniser.h"

namespace orvane {
namespace {

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

}  // namespace

bool EvaluateArgument(ScriptEngine& engine, std::size_t& position, std::string& argument) {
  argument.clear();
  if (!EvaluateOperand(engine, position, argument)) return false;
  if (!IsOperand(TokenAt(engine, position + 1))) return true;

  // An operand that leaves no text of its own stands for the one before it once more.
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
