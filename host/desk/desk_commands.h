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

// Carries out a line that begins with a colon. True if a value that is there has turned out to be
// secret. Throws Failure.
bool RunDeskCommand(Desk& desk, std::string_view line);

// Notes what a statement has done, so that :vars and :save know of it. It has been run.
void NoteDone(Desk& desk, const Statement& statement);

// The help for a word; throws Failure (kUsageFault) if there is none.
void ExplainWord(std::string_view word);

// The words that the line up to the cursor may go on with, in the place of its last one.
std::vector<std::string> CompleteLine(const Desk& desk, std::string_view before);

}  // namespace host
