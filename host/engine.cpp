#include "host/engine.h"

#include <orvane.h>

#include <array>

#include "host/failure.h"
#include "host/text.h"

namespace host {
namespace {

Result RunText(const std::string& text) {
  std::array<char, 512> buffer{};
  const int32_t code = RunScript(text.c_str(), buffer.data());
  return {code, buffer.data()};
}

// The library counts a failed command as one without a value, and goes on with what stands behind
// the place where it failed. @compare, though, hands over the text of an operand that fails: with a
// mark in front it can't be mistaken for its "0".
bool Fails(std::string_view call, std::string& message) {
  const Result result = RunText("@compare(~ " + std::string(call) + ",~,2)");
  message = result.text.substr(result.text.starts_with('~') ? 1 : 0);
  // A command without a message leaves what the operand before it gave.
  if (message == "~") message.clear();
  return result.code != KindCompare || result.text != "0";
}

std::string LikelyCause(const std::string& keyword) {
  if (keyword == "@DES" || keyword == "@DESCBC" || keyword == "@MAC" || keyword == "@SUBKEY") {
    return ": is its key 8, 16 or 24 bytes long, and the module orvane_crypto there?";
  }
  return keyword == "@HASH" || keyword == "@RSAPUBENC" ? ": is the module orvane_crypto there?"
                                                       : "";
}

}  // namespace

void CheckOperands(const Statement& statement) {
  for (size_t at = statement.value; at < statement.end; ++at) {
    const Word& word = statement.words[at];
    if (word.kind == WordKind::kVariable && GetVarValue(word.text.c_str()) != ScriptDone) {
      throw Failure(kScriptFault, "undefined variable " + word.text);
    }
  }
  for (const Call& call : statement.calls) {
    if (call.forHost) continue;  // it fails only if an argument does
    std::string message;
    if (!Fails(statement.Source(call.first, call.last), message)) continue;
    throw Failure(kScriptFault,
                  statement.words[call.first].text + " failed" +
                      (message.empty() ? LikelyCause(call.keyword) : ": " + Printable(message)));
  }
}

Result Run(const Statement& statement) {
  CheckOperands(statement);
  Result result = RunText(statement.text);
  if (result.code == ScriptException) {
    throw Failure(kScriptFault,
                  "the statement gives more than 511 characters, the most that a "
                  "statement can hand over");
  }
  if (result.code == ScriptNoEngine) throw Failure(kScriptFault, "out of memory");
  return result;
}

std::string Evaluate(std::string_view operands) {
  // A name without % is out of reach for scripts.
  return RunText("ORVANE.VALUE = " + std::string(operands)).text;
}

void SetVariable(const std::string& name, const std::string& value) {
  if (SetVarValue(name.c_str(), value.c_str()) != ScriptDone) {
    throw Failure(kScriptFault, "can't store " + name);
  }
}

}  // namespace host
