#pragma once

#include "host/options.h"

namespace host {

// Runs `orvane test`. Gives the exit code: 0 if nothing failed, kExpectationFailed if an
// expectation failed, else that of the first case that broke off. Throws Failure for faults before
// the first command, and for files that cannot be written.
int TestFiles(const Options& options);

}  // namespace host
