#include "engine/engine.h"

#include <algorithm>
#include <cstring>

#include "engine/tokeniser.h"
#include "util/entrance.h"

namespace orvane {
namespace {

std::string UpperCased(std::string_view name) {
  std::string upper(name);
  UpperCase(upper);
  return upper;
}

// Handles a text that the host's buffer cannot hold. An assignment is stored already and shows its
// first bytes. Of anything else the host gets nothing: half a command must never reach a card.
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

const std::string* FindVariable(const ScriptEngine& engine, std::string_view name) {
  const auto entry = engine.variables.find(name);
  return entry != engine.variables.end() ? &entry->second : nullptr;
}

std::int32_t GetVariable(const ScriptEngine& engine, std::string_view name, std::string& out) try {
  if (name.empty()) return ScriptEmptyName;
  if (const std::string* const value = FindVariable(engine, name)) {
    out = *value;
    return ScriptDone;
  }
  out = "var \"" + UpperCased(name) + "\" not define ";
  return ScriptUndefinedVariable;
} catch (...) {
  return ScriptException;
}

std::int32_t SetVariable(ScriptEngine& engine, std::string_view name, std::string_view value) try {
  if (name.empty()) return ScriptEmptyName;
  const auto entry = engine.variables.find(name);
  if (entry != engine.variables.end()) {
    entry->second = value;
  } else {
    engine.variables.emplace(UpperCased(name), value);
  }
  return ScriptDone;
} catch (...) {
  return ScriptException;
}

void UpperCase(std::string& text) {
  for (char& c : text) c = UpperCase(c);
}

}  // namespace orvane

std::int32_t RunScript(const char* script, char* result) {
  const orvane::Entrance entrance;
  if (!entrance) {
    std::memset(result, 0, orvane::kResultSize);
    return ScriptException;
  }
  orvane::ScriptEngine* const engine = orvane::EnsureEngine();
  if (engine == nullptr) return ScriptNoEngine;
  return orvane::RunStatement(*engine, script != nullptr ? script : "", result);
}

std::int32_t SetVarValue(const char* name, const char* value) {
  orvane::ScriptEngine* const engine = orvane::EnsureEngine();
  return engine != nullptr ? orvane::SetVariable(*engine, name, value) : ScriptNoEngine;
}

std::int32_t GetVarValue(const char* name) {
  orvane::ScriptEngine* const engine = orvane::EnsureEngine();
  if (engine == nullptr) return ScriptNoEngine;
  std::string value;
  return orvane::GetVariable(*engine, name, value);
}
