#pragma once

#include <csignal>
#include <ctime>

namespace orvane::platform {

// While this lives, a write that fails sends the host no signal; it only fails. This concerns files
// at their size limit and pipes that nobody reads.
class WriteSignals {
 public:
  WriteSignals() {
    sigset_t pending;
    sigemptyset(&ours_);
    sigpending(&pending);
    for (const int signal : {SIGXFSZ, SIGPIPE}) {
      if (sigismember(&pending, signal) == 0) sigaddset(&ours_, signal);
    }
    pthread_sigmask(SIG_BLOCK, &ours_, &before_);
  }
  WriteSignals(const WriteSignals&) = delete;
  WriteSignals& operator=(const WriteSignals&) = delete;
  ~WriteSignals() {
    constexpr timespec kAtOnce{};
    while (sigtimedwait(&ours_, nullptr, &kAtOnce) > 0) continue;
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }

 private:
  sigset_t ours_;  // the signals that were not pending before
  sigset_t before_;
};

}  // namespace orvane::platform
