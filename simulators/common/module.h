#pragma once

// The simulated device of a module: one card that can be pulled out and put back.

#include <string>
#include <vector>

#include "common/smart_card.h"

namespace simulator {

// The card of this module, whether it is in or out: the virtual one, or a recording that is
// replayed.
SmartCard& Card();

bool CardPresent();

// How often the card went in or out since the start.
uint32_t CardMovements();

// The PC/SC readers that a recording names; none where none is replayed.
std::vector<std::string> RecordedReaders();

// Has SimulatorRestart call restore as well. A module with state of its own keeps one of these in a
// variable.
struct AtRestart {
  explicit AtRestart(void (*restore)());
};

}  // namespace simulator
