#pragma once

// The simulated device of a module: one card that can be pulled out and put back.

#include "common/virtual_card.h"

namespace simulator {

// The card of this module, whether it is in or out.
VirtualCard& Card();

bool CardPresent();

// How often the card went in or out since the start.
uint32_t CardMovements();

// Has SimulatorRestart call restore as well. A module with state of its own keeps one of these in a
// variable.
struct AtRestart {
  explicit AtRestart(void (*restore)());
};

}  // namespace simulator
