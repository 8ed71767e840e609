#pragma once

#include <ostream>
#include <span>
#include <string>
#include <vector>

#include "host/check/check.h"
#include "host/options.h"
#include "host/script.h"

namespace host {

// The circumstances in which a script begins, by the command line and the environment. Throws as
// Definitions does.
Circumstances CircumstancesOf(const Options& options);

// Prints what is wrong with scripts, a line each or, with json, an array of objects. Gives the exit
// code: 3 if there is an error, 1 if there are warnings alone. Throws Failure (kFileFault).
int CheckFiles(std::ostream& out, const std::vector<std::string>& files,
               const Circumstances& circumstances, bool json);

// Throws ScriptFailure with the first error of scripts that run one behind the other, if there is
// one.
void RefuseErrors(std::span<const Script> scripts, const Circumstances& circumstances);

}  // namespace host
