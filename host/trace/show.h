#pragma once

#include "host/trace.h"
#include "host/trace/recorded.h"

namespace host {

// Shows a recording as a run would have shown it; with times on request.
void ShowRecording(const Recording& recording, Trace& trace, bool showSecrets, bool times);

}  // namespace host
