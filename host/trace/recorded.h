#pragma once

#include <string>

#include "host/command.h"
#include "recordings/recording.h"

namespace host {

using recordings::EventType;
using recordings::RecordedEvent;
using recordings::Recording;

// A recorded command as the program's own; hidden digits are 0.
CardCommand CommandOf(const RecordedEvent& exchange);

// True if the data may not be shown, or can't be.
bool HidesData(const RecordedEvent& exchange, bool showSecrets);

// Response data and status word.
inline std::string OctetsOf(const RecordedEvent& exchange) {
  return exchange.response + exchange.statusWord;
}

}  // namespace host
