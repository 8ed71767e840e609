#pragma once

#include <string>

#include "host/command.h"
#include "recordings/recording.h"

namespace host {

using recordings::EventType;
using recordings::RecordedEvent;
using recordings::Recording;

// A recorded command as a CardCommand; hidden digits are 0.
CardCommand CommandOf(const RecordedEvent& exchange);

// True if the data must not be shown, or is hidden in the recording.
bool HidesData(const RecordedEvent& exchange, bool showSecrets);

// Response data followed by the status word.
inline std::string OctetsOf(const RecordedEvent& exchange) {
  return exchange.response + exchange.statusWord;
}

}  // namespace host
