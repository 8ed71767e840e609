#pragma once

#include <ostream>
#include <string>

#include "host/trace/recorded.h"

namespace host {

// A recording and what its lines are named after.
struct NamedRecording {
  std::string name;
  Recording recording;
};

// Prints where two sessions part: other responses to the same commands, up to the first command
// that is another one. True if they are the same. Times are no difference; they are printed if they
// are asked for.
bool PrintDifferences(std::ostream& out, const NamedRecording& left, const NamedRecording& right,
                      bool showSecrets, bool times);

}  // namespace host
