#pragma once

#include "host/workplace.h"

namespace host {

// Takes statements from standard input until its end, @stop() or quit, and lines for the desk,
// which begin with a colon. A failed one is told on standard error, and the next one is taken.
// Gives the exit code: that of the first failure, or kDone after a person's session.
int RunShell(Workplace& workplace, bool showSecrets, bool interactive);

}  // namespace host
