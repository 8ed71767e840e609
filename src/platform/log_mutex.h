#pragma once

namespace orvane::platform {

// The lock around log writes: one in the process, whichever of these objects is used. It is made
// before it is first taken and lasts until the process ends. The names are those that
// std::lock_guard calls.
class LogMutex {
 public:
  // Waits without a time limit.
  void lock();
  void unlock();
};

}  // namespace orvane::platform
