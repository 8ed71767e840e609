#pragma once

#include <string>
#include <vector>

#include "host/secrets.h"
#include "host/session.h"
#include "host/statement.h"

namespace host {

// A script file: one statement a line.
struct Script {
  std::string name;  // as messages show it
  std::vector<Statement> statements;
};

// Reads the whole file, or standard input for "-", so that a script with a malformed statement
// stops before it has done anything. Throws Failure (kFileFault), or ScriptFailure for the
// statement.
Script ReadScript(const std::string& file);

// Has the session look at every statement. Throws ScriptFailure at the first one that is refused.
void LookAtScript(const Script& script, const Session& session);

// Runs it up to its end or @stop(). Throws ScriptFailure.
void RunScriptFile(const Script& script, Session& session);

}  // namespace host
