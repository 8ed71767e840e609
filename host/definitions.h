#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/options.h"
#include "host/secrets.h"

namespace host {

// The variables of the command line, names with their %: those of --vars, --env and -D, in this
// order; the last definition of a name counts. Throws Failure (kFileFault) for a file that cannot
// be read, ScriptFailure for a wrong line, Failure (kUsageFault) for a name that the environment
// lacks. No message quotes a value.
std::vector<std::pair<std::string, std::string>> Definitions(const Options& options);

// Stores the variables and makes them known to `secrets`.
void StoreDefinitions(const std::vector<std::pair<std::string, std::string>>& definitions,
                      Secrets& secrets);

// What is wrong with a definition, NAME=VALUE, or with a name alone; empty if nothing is.
std::string CheckDefinition(const std::string& text);
std::string CheckName(const std::string& name);

}  // namespace host
