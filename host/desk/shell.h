#pragma once

#include "host/workplace.h"

namespace host {

// Takes statements from standard input until its end, @stop() or quit, and the shell's own lines,
// which begin with a colon. Prints a failure on standard error and goes on with the next line.
// Gives the exit code: that of the first failure, or kDone after a person's session.
int RunShell(Workplace& workplace, bool showSecrets, bool interactive);

}  // namespace host
