#pragma once

#include "host/options.h"

namespace host {

// Everything that orvane batch does. Gives the exit code.
int RunBatch(const Options& options);

}  // namespace host
