#include <cstring>

#include "engine/engine.h"
#include "orvane.h"
#include "util/entrance.h"

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
