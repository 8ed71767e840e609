#include "host/script.h"

#include <iostream>

#include "host/expectation.h"
#include "host/operands.h"
#include "host/text_input.h"

namespace host {

Script::Script(const std::string& file) {
  TextInput in(file);
  name_ = in.Name();
  size_t number = 0;
  bool belowCommand = false;
  while (const std::optional<std::string> line = in.NextLine()) {
    ++number;
    try {
      const Statement statement = ReadStatement(*line);
      if (statement.form == Form::kExpectation && !belowCommand) throw NoCommandAbove();
      belowCommand = statement.Sends() || (belowCommand && statement.IsComment());
    } catch (const Failure& failure) {
      throw At(number, failure);
    }
    text_ += *line + '\n';
  }
}

ScriptFailure Script::At(size_t line, const Failure& failure) const {
  return ScriptFailure(failure.Code(), name_ + ":" + std::to_string(line) + ": " + failure.what());
}

void Script::ForEach(const std::function<bool(const Statement&, size_t line)>& visit) const {
  size_t number = 0;
  for (size_t begin = 0, end = 0; begin < text_.size(); begin = end + 1) {
    end = text_.find('\n', begin);
    const Statement statement = ReadStatement(std::string_view(text_).substr(begin, end - begin));
    try {
      if (!visit(statement, ++number)) return;
    } catch (const Failure& failure) {
      throw At(number, failure);
    }
  }
}

bool LookAtScript(const Script& script, Session& session) {
  session.StartOver();
  bool sound = true;
  bool learned = false;
  script.ForEach([&](const Statement& statement, size_t) {
    learned = session.Learn(statement) || learned;
    try {
      CheckLiterals(statement, true);
    } catch (const Failure&) {
      sound = false;
    }
    return true;
  });
  if (sound) return learned;
  // All secrets are known now, so the message can hide them.
  size_t assignments = 0;
  script.ForEach([&](const Statement& statement, size_t) {
    session.LookAt(statement, assignments);
    if (statement.form == Form::kAssignment) ++assignments;
    return true;
  });
  return learned;
}

void RunScriptFile(const Script& script, Session& session) {
  try {
    script.ForEach(
        [&](const Statement& statement, size_t line) { return session.Run(statement, line); });
  } catch (const Failure&) {
    if (!std::cout.bad()) session.Summarise(false);
    throw;
  }
  session.Summarise(true);
}

}  // namespace host
