#pragma once

#include "host/options.h"

namespace host {

// What `orvane trace` does. Gives the exit code; throws Failure.
int TraceRecording(const Options& options);

}  // namespace host
