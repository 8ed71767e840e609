#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/desk/typed_script.h"
#include "host/workplace.h"

namespace host {

// What the lines of the shell work with.
struct Desk {
  Workplace& workplace;
  TypedScript& typed;
  bool showSecrets;
  std::set<std::string> variables = {};  // their names, with % and in upper case
};

// Runs a line that begins with a colon. True if a value that is already stored turns out to be
// secret. Throws Failure.
bool RunDeskCommand(Desk& desk, std::string_view line);

// Notes for :vars and :save what a statement has done. The statement has been run.
void NoteDone(Desk& desk, const Statement& statement);

// Prints the help for a word. Throws Failure (kUsageFault) if there is none.
void ExplainWord(std::string_view word);

// The words that may replace the last word of the line up to the cursor.
std::vector<std::string> CompleteLine(const Desk& desk, std::string_view before);

}  // namespace host
