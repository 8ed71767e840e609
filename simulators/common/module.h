#pragma once

// The simulated device of a module: one card that can be removed and inserted.

#include <string>
#include <vector>

#include "common/smart_card.h"

namespace simulator {

// The card of this module, inserted or not: the virtual card, or a replayed recording.
SmartCard& Card();

bool CardPresent();

// How often the card was removed or inserted since the start.
uint32_t CardMovements();

// The PC/SC readers that the replayed recording names; empty if none is replayed.
std::vector<std::string> RecordedReaders();

// Makes SimulatorRestart call `restore` too. A module with state of its own has one variable of
// this type.
struct AtRestart {
  explicit AtRestart(void (*restore)());
};

}  // namespace simulator
