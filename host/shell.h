#pragma once

#include "host/session.h"

namespace host {

// Takes statements from standard input until its end, @stop() or quit. A failed one is told on
// standard error, and the next one is taken. Gives the exit code: that of the first failure, or
// kDone after a person's session.
int RunShell(Session& session, bool interactive);

}  // namespace host
