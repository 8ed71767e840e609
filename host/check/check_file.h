#pragma once

#include <ostream>
#include <span>
#include <string>
#include <vector>

#include "host/check/check.h"
#include "host/options.h"
#include "host/script.h"

namespace host {

// The circumstances that the command line and the environment give a script. Throws like
// Definitions.
Circumstances CircumstancesOf(const Options& options);

// Prints the faults of scripts, one per line or, with json, as an array of objects. Gives the exit
// code: 3 if there is an error, 1 if there are only warnings. Throws Failure (kFileFault).
int CheckFiles(std::ostream& out, const std::vector<std::string>& files,
               const Circumstances& circumstances, bool json);

// Throws ScriptFailure with the first error, if any, of scripts that run one after the other.
void RefuseErrors(std::span<const Script> scripts, const Circumstances& circumstances);

}  // namespace host
