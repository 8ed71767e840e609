#include "platform/foreign_call.h"

namespace orvane::platform {

// Here all compilers share one kind of exception.
bool OrvaneRunForeign(void (*operation)(void*), void* argument) {
  operation(argument);
  return true;
}

}  // namespace orvane::platform
