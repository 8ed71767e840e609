#include "common/module.h"

#include "common/call.h"

namespace simulator {
namespace {

bool present = true;
uint32_t movements = 0;
void (*restoreModule)() = nullptr;

}  // namespace

VirtualCard& Card() {
  static VirtualCard card;
  return card;
}

bool CardPresent() { return present; }

uint32_t CardMovements() { return movements; }

AtRestart::AtRestart(void (*restore)()) { restoreModule = restore; }

}  // namespace simulator

void SimulatorRestart(void) {
  using namespace simulator;
  ForgetCalls();
  Card() = VirtualCard();
  present = true;
  movements = 0;
  if (restoreModule) restoreModule();
}

void SimulatorInsertCard(int32_t nowPresent) {
  using namespace simulator;
  if (present == (nowPresent != 0)) return;
  present = !present;
  ++movements;
  if (present) Card().Reset();
}
