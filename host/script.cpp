#include "host/script.h"

#include <iostream>

#include "host/failure.h"
#include "host/text_input.h"

namespace host {
namespace {

ScriptFailure At(const Script& script, size_t line, const Failure& failure) {
  return ScriptFailure(failure.Code(),
                       script.name + ":" + std::to_string(line) + ": " + failure.what());
}

}  // namespace

Script ReadScript(const std::string& file) {
  TextInput in(file);
  Script script;
  script.name = in.Name();
  while (const std::optional<std::string> line = in.NextLine()) {
    try {
      script.statements.push_back(ReadStatement(*line));
    } catch (const Failure& failure) {
      throw At(script, script.statements.size() + 1, failure);
    }
  }
  return script;
}

void LookAtScript(const Script& script, const Session& session) {
  size_t assignments = 0;
  for (size_t at = 0; at < script.statements.size(); ++at) {
    try {
      session.LookAt(script.statements[at], assignments);
      if (script.statements[at].form == Form::kAssignment) ++assignments;
    } catch (const Failure& failure) {
      throw At(script, at + 1, failure);
    }
  }
}

void RunScriptFile(const Script& script, Session& session) {
  for (size_t at = 0; at < script.statements.size(); ++at) {
    try {
      if (!session.Run(script.statements[at], at + 1)) break;
    } catch (const Failure& failure) {
      if (!std::cout.bad()) session.Summarise(false);
      throw At(script, at + 1, failure);
    }
  }
  session.Summarise(true);
}

}  // namespace host
