#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "host/failure.h"
#include "host/session.h"
#include "host/statement.h"

namespace host {

// A script file, one statement per line. It is stored as text, and each statement is parsed when
// needed: parsed statements take ten times the memory.
class Script {
 public:
  // Reads the whole file, or standard input for "-", so that a malformed statement stops the script
  // before it has done anything. Throws Failure (kFileFault), or ScriptFailure for a statement.
  explicit Script(const std::string& file);

  // The name in messages.
  const std::string& Name() const { return name_; }

  // The text as read, each line with a line feed.
  const std::string& Text() const { return text_; }

  // Passes the statements to visit in order, with their lines counted from 1, until visit gives
  // false. A Failure from visit becomes a ScriptFailure.
  void ForEach(const std::function<bool(const Statement&, size_t line)>& visit) const;

 private:
  ScriptFailure At(size_t line, const Failure& failure) const;

  std::string name_;
  std::string text_;  // each line with a line feed
};

// Lets the session check every statement and learn the script's secrets. True if the value of an
// existing variable turns out to be secret. Throws ScriptFailure for the first refused statement.
bool LookAtScript(const Script& script, Session& session);

// Runs it to its end or @stop(). Throws ScriptFailure.
void RunScriptFile(const Script& script, Session& session);

}  // namespace host
