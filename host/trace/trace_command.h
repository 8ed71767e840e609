#pragma once

#include "host/options.h"

namespace host {

// Runs `orvane trace`. Gives the exit code; throws Failure.
int TraceRecording(const Options& options);

}  // namespace host
