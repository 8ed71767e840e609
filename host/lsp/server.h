#pragma once

#include "host/check/check.h"

namespace host {

// Serves an editor on standard input and output by the Language Server Protocol. Gives the exit
// code: 0 if the editor ended the session properly, else 1. Throws Failure (kFileFault).
int ServeEditor(const Circumstances& circumstances);

}  // namespace host
