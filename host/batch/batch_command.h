#pragma once

#include "host/options.h"

namespace host {

// Runs orvane batch. Gives the exit code.
int RunBatch(const Options& options);

}  // namespace host
