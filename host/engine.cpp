#include "host/engine.h"

#include <orvane.h>

#include <algorithm>
#include <array>
#include <charconv>

#include "host/failure.h"
#include "host/text.h"

namespace host {
namespace {

constexpr size_t kPiece = 511;

// The variable from which a long value is read in pieces.
constexpr const char* kWaiting = "%ORVANE.VALUE";
constexpr const char* kPieceName = "ORVANE.PIECE";

Result RunText(const std::string& text) {
  std::array<char, 512> buffer{};
  const int32_t code = RunScript(text.c_str(), buffer.data());
  return {code, buffer.data()};
}

size_t LengthOf(const std::string& variable) {
  const std::string digits = RunText("ORVANE.LENGTH = @strlen(" + variable + ")").text;
  size_t length = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), length);
  return length;
}

// The value's beginning, up to 64 KiB, with its letters' case.
std::string ReadVariable(const std::string& variable) {
  const size_t length = std::min(LengthOf(variable), kLongestValue);
  std::string value;
  while (value.size() < length) {
    const std::string piece =
        RunText(std::string(kPieceName) + " = @strmid(" + variable + "," +
                std::to_string(value.size()) + "," + std::to_string(kPiece) + ")")
            .text;
    if (piece.empty()) throw Failure(kScriptFault, "out of memory");
    value += piece;
  }
  SetVarValue(kPieceName, "");
  return value;
}

// Stores the value of operands in a variable and gives its beginning, up to kPiece.
std::string Keep(std::string_view operands) {
  Result result = RunText(std::string(kWaiting) + " = " + std::string(operands));
  if (result.code != KindAssignment) throw Failure(kScriptFault, "out of memory");
  return result.text;
}

std::string ReadLongExpression(const Statement& statement) {
  Keep(statement.text);
  const size_t length = LengthOf(kWaiting);
  const std::string value = ReadVariable(kWaiting);
  SetVarValue(kWaiting, "");
  if (length <= kLongestValue) return UpperCase(value);
  throw Failure(kScriptFault, "the statement gives " + std::to_string(length) +
                                  " characters: more than any command has");
}

}  // namespace

// The library treats a failed command as one without a value and goes on behind the failure. But
// @compare hands over the text of a failing operand. With a mark before the operand, that text
// cannot be mistaken for @compare's "0".
bool Fails(std::string_view call, std::string& message) {
  const Result result = RunText("@compare(~ " + std::string(call) + ",~,2)");
  message = result.text.substr(result.text.starts_with('~') ? 1 : 0);
  // A command without a message repeats the text of the operand before it.
  if (message == "~") message.clear();
  return result.code != KindCompare || result.text != "0";
}

Result Run(const Statement& statement) {
  Result result = RunText(statement.text);
  if (result.code == ScriptException && statement.Sends()) {
    return {KindExpression, ReadLongExpression(statement)};
  }
  if (result.code == ScriptException) {
    throw Failure(kScriptFault,
                  "the argument has more than 511 characters, the most that a "
                  "command can hand over to its host");
  }
  if (result.code == KindAssignment && result.text.size() == kPiece &&
      statement.words[0].kind == WordKind::kVariable) {
    result.text = ReadVariable(statement.TextOf(statement.words[0]));
  }
  if (result.code == ScriptNoEngine) throw Failure(kScriptFault, "out of memory");
  return result;
}

std::string Evaluate(std::string_view operands) {
  std::string value = Keep(operands);
  if (value.size() == kPiece) value = ReadVariable(kWaiting);
  SetVarValue(kWaiting, "");
  return value;
}

void SetVariable(const std::string& name, const std::string& value) {
  if (SetVarValue(name.c_str(), value.c_str()) != ScriptDone) {
    throw Failure(kScriptFault, "can't store " + name);
  }
}

}  // namespace host
