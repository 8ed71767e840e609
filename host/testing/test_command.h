#pragma once

#include "host/options.h"

namespace host {

// Carries out `orvane test`. Gives the exit code: 0 if nothing failed, kExpectationFailed if an
// expectation did not hold, else that of the first case that broke off. Throws Failure for what is
// wrong before the first command, and for files that can't be written.
int TestFiles(const Options& options);

}  // namespace host
