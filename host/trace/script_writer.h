#pragma once

#include <ostream>

#include "host/trace/difference.h"

namespace host {

// Writes a script that repeats the session with `orvane run` and expects what was recorded. Hidden
// data comes from variables.
void WriteScript(std::ostream& out, const NamedRecording& session);

}  // namespace host
