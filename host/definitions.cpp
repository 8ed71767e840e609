#include "host/definitions.h"

#include <algorithm>

#include "host/engine.h"
#include "host/failure.h"
#include "host/platform.h"
#include "host/text_input.h"

namespace host {
namespace {

using Variables = std::vector<std::pair<std::string, std::string>>;

std::string VariableName(const std::string& name) {
  return name.starts_with('%') ? name : "%" + name;
}

void AddDefinition(Variables& variables, const std::string& text) {
  const size_t equals = text.find('=');
  variables.emplace_back(VariableName(text.substr(0, equals)), text.substr(equals + 1));
}

void AddFile(Variables& variables, const std::string& file) {
  TextInput input(file);
  size_t number = 0;
  while (const std::optional<std::string> line = input.NextLine()) {
    ++number;
    if (line->empty() || *line->begin() == ';' || *line->begin() == '#') continue;
    if (const std::string fault = CheckDefinition(*line); !fault.empty()) {
      throw ScriptFailure(kScriptFault, input.Name() + ":" + std::to_string(number) + ": " + fault);
    }
    AddDefinition(variables, *line);
  }
}

}  // namespace

Variables Definitions(const Options& options) {
  Variables variables;
  const std::vector<std::string>& tests = options.tests;
  const bool inputIsTaken = tests.empty()
                                ? options.file.empty() || options.file == "-"
                                : std::find(tests.begin(), tests.end(), "-") != tests.end();
  for (const std::string& file : options.variableFiles) {
    if (file == "-" && inputIsTaken) {
      throw Failure(kUsageFault, "standard input holds the statements, and no variables");
    }
    AddFile(variables, file);
  }
  for (const std::string& name : options.environment) {
    const auto value = EnvironmentVariable(name.starts_with('%') ? name.substr(1) : name);
    if (!value) throw Failure(kUsageFault, "the environment has no " + name);
    variables.emplace_back(VariableName(name), *value);
  }
  for (const std::string& text : options.definitions) AddDefinition(variables, text);
  return variables;
}

void StoreDefinitions(const Variables& definitions, Secrets& secrets) {
  for (const auto& [name, value] : definitions) {
    SetVariable(name, value);
    secrets.Define(name, value);
  }
}

std::string CheckName(const std::string& name) {
  const bool usable =
      name.size() > (name.starts_with('%') ? 1u : 0u) && name.find_first_of(" \t(),=") == name.npos;
  return usable ? "" : "a name has no blanks, parentheses, commas and =";
}

std::string CheckDefinition(const std::string& text) {
  const size_t equals = text.find('=');
  const bool usable = equals != text.npos && CheckName(text.substr(0, equals)).empty();
  return usable ? "" : "it takes NAME=VALUE, NAME without blanks, parentheses and commas";
}

}  // namespace host
