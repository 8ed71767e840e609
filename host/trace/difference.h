#pragma once

#include <ostream>
#include <string>

#include "host/trace/recorded.h"

namespace host {

// A recording, and the name that its lines get.
struct NamedRecording {
  std::string name;
  Recording recording;
};

// Prints where two sessions differ: different responses to the same commands, up to the first
// command that differs. True if they are the same. Times do not count; they are printed on request.
bool PrintDifferences(std::ostream& out, const NamedRecording& left, const NamedRecording& right,
                      bool showSecrets, bool times);

}  // namespace host
