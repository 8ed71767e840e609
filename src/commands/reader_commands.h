#pragma once

#include "commands/call.h"

namespace orvane {

// Commands that ask the host for something: they mark the statement and pass their argument on.
bool ResetRequest(Call& call);
bool StopRequest(Call& call);
bool SetReaderRequest(Call& call);
bool SetSlotRequest(Call& call);
bool OpenReaderRequest(Call& call);

}  // namespace orvane
