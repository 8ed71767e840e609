#include "platform/foreign_call.h"

namespace orvane::platform {

// All compilers here share one kind of exception.
bool OrvaneRunForeign(void (*operation)(void*), void* argument) {
  operation(argument);
  return true;
}

}  // namespace orvane::platform
