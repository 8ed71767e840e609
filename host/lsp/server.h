#pragma once

#include "host/check/check.h"

namespace host {

// Serves an editor on standard input and output, as the Language Server Protocol has it. Gives the
// exit code: 0 if the editor asked for the end as it should, else 1. Throws Failure (kFileFault).
int ServeEditor(const Circumstances& circumstances);

}  // namespace host
