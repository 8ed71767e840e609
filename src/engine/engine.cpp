#include "engine/engine.h"

#include <cstring>
#include <utility>

#include "engine/tokeniser.h"

namespace orvane {
namespace {

std::string UpperCased(std::string_view name) {
  std::string upper(name);
  UpperCase(upper);
  return upper;
}

// A text that the host's buffer cannot hold: an assignment is stored already and shows its first
// bytes; of anything else the host gets nothing, since half a command must never reach a card.
std::int32_t FitResult(ScriptEngine& engine, std::int32_t code) {
  if (engine.resultText.size() < kResultSize) return code;
  if (code == ScriptDone && engine.statementKind == KindAssignment) {
    engine.resultText.resize(kResultSize - 1);
    return code;
  }
  engine.resultText.clear();
  return ScriptException;
}

std::int32_t RunToCode(ScriptEngine& engine, std::string_view script) try {
  engine.statement = script;
  return Tokenise(engine);
} catch (...) {
  return ScriptException;
}

}  // namespace

ScriptEngine::ScriptEngine() {
  for (const char* name : {"SYS_RESP", "SYS_SW", "SYS_FUNCRTN", "SYS_STATE"}) variables[name];
}

ScriptEngine* EnsureEngine() {
  static ScriptEngine* instance = nullptr;
  if (instance == nullptr) {
    try {
      instance = new ScriptEngine;
    } catch (...) {
      return nullptr;
    }
  }
  return instance;
}

std::int32_t RunStatement(ScriptEngine& engine, std::string_view script, char* result) {
  engine.resultText.clear();
  engine.tokenCount = 0;
  engine.statementKind = KindAssignment;
  engine.tokens.clear();
  engine.callDepth = 0;
  const std::int32_t code = FitResult(engine, RunToCode(engine, script));
  const std::size_t length = engine.resultText.size();
  std::memcpy(result, engine.resultText.data(), length);
  std::memset(result + length, 0, kResultSize - length);
  return code == ScriptDone ? engine.statementKind : code;
}

std::int32_t GetVariable(const ScriptEngine& engine, std::string_view name, std::string& out) try {
  if (name.empty()) return ScriptEmptyName;
  const std::string key = UpperCased(name);
  const auto entry = engine.variables.find(key);
  if (entry == engine.variables.end()) {
    out = "var \"" + key + "\" not define ";
    return ScriptUndefinedVariable;
  }
  out = entry->second;
  return ScriptDone;
} catch (...) {
  return ScriptException;
}

std::int32_t SetVariable(ScriptEngine& engine, std::string_view name, std::string_view value) try {
  if (name.empty()) return ScriptEmptyName;
  std::string key = UpperCased(name);
  const auto entry = engine.variables.find(key);
  if (entry != engine.variables.end()) {
    entry->second = value;
  } else {
    engine.variables.emplace(std::move(key), value);
  }
  return ScriptDone;
} catch (...) {
  return ScriptException;
}

void UpperCase(std::string& text) {
  for (char& c : text) c = static_cast<char>(c >= 'a' && c <= 'z' ? c - ('a' - 'A') : c);
}

}  // namespace orvane
