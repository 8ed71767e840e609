#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/options.h"
#include "host/secrets.h"

namespace host {

// The variables that the command line brings, their names with the % of scripts: of --vars, --env
// and -D in this order, so that a later one goes before an earlier one. Throws Failure (kFileFault)
// for a file that can't be read, ScriptFailure for a line that is wrong, Failure (kUsageFault) for
// what the environment does not have. No message quotes a value.
std::vector<std::pair<std::string, std::string>> Definitions(const Options& options);

// Stores them, and tells of them what holds secrets.
void StoreDefinitions(const std::vector<std::pair<std::string, std::string>>& definitions,
                      Secrets& secrets);

// What is wrong with the text of a definition, NAME=VALUE, or with its name alone; empty if
// nothing.
std::string CheckDefinition(const std::string& text);
std::string CheckName(const std::string& name);

}  // namespace host
