#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "host/failure.h"
#include "host/session.h"
#include "host/statement.h"

namespace host {

// A script file: one statement a line. It is kept as text, and each line is read anew where its
// statement is wanted: as words it takes ten times the memory.
class Script {
 public:
  // Reads the whole file, or standard input for "-", so that a script with a malformed statement
  // stops before it has done anything. Throws Failure (kFileFault), or ScriptFailure for the
  // statement.
  explicit Script(const std::string& file);

  // As messages show it.
  const std::string& Name() const { return name_; }

  // As it was read, each line with a line feed behind it.
  const std::string& Text() const { return text_; }

  // Hands over the statements in order, with their lines counted from 1, until visit gives false.
  // A Failure out of visit becomes a ScriptFailure.
  void ForEach(const std::function<bool(const Statement&, size_t line)>& visit) const;

 private:
  ScriptFailure At(size_t line, const Failure& failure) const;

  std::string name_;
  std::string text_;  // each line with a line feed behind it
};

// Has the session look at every statement and learn the script's secrets. True if what stands in a
// variable turns out to be secret. Throws ScriptFailure at the first statement that is refused.
bool LookAtScript(const Script& script, Session& session);

// Runs it up to its end or @stop(). Throws ScriptFailure.
void RunScriptFile(const Script& script, Session& session);

}  // namespace host
