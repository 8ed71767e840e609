#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "orvane.h"
#include "util/any_case.h"

namespace orvane {

// The size of the host's result buffer, terminator included.
inline constexpr std::size_t kResultSize = 512;

// Maps names in upper case to values. A lookup takes a name in any case and makes no copy of it.
using VariableTable = std::unordered_map<std::string, std::string, AnyCaseHash, AnyCaseEqual>;

// Runs one statement at a time; only `variables` lives from one statement to the next.
struct ScriptEngine {
  ScriptEngine();

  std::string resultText;       // what the running statement leaves for the host
  std::int32_t tokenCount = 0;  // words and separators found so far, adjacent literals not joined
  std::int32_t statementKind = KindAssignment;  // commands change it while they run
  std::vector<std::string_view> tokens;         // views of `statement`
  VariableTable variables;

  std::string statement;       // the engine's own copy, in which the tokeniser joins literals
  std::int32_t callDepth = 0;  // nested calls that are running now
};

// The one instance, made by the first call and never released. Null if memory ran out.
ScriptEngine* EnsureEngine();

// Runs `script` and fills `result`, kResultSize bytes. Gives the code of RunScript.
std::int32_t RunStatement(ScriptEngine& engine, std::string_view script, char* result);

// A variable's value, or null if there is none of this name.
const std::string* FindVariable(const ScriptEngine& engine, std::string_view name);

// Sets `out` to the variable's value and gives ScriptDone. An unknown name gives
// ScriptUndefinedVariable and sets `out` to the message; an empty one gives ScriptEmptyName.
std::int32_t GetVariable(const ScriptEngine& engine, std::string_view name, std::string& out);

// Stores a value: ScriptDone, ScriptEmptyName, or ScriptException with the table as it was.
std::int32_t SetVariable(ScriptEngine& engine, std::string_view name, std::string_view value);

// Upper-cases a whole text.
void UpperCase(std::string& text);

}  // namespace orvane
