#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/failure.h"
#include "host/options.h"
#include "host/replay.h"
#include "host/session_recorder.h"

namespace host {

// What records a session and what replays one, as far as the options ask for either. It outlives
// the readers.
class Listeners {
 public:
  explicit Listeners(const Options& options)
      : replay_(ReplayFor(options)), recorder_(RecorderFor(options)) {}

  void AddTo(std::vector<ExchangeListener*>& listeners) const {
    if (recorder_) listeners.push_back(recorder_.get());
    if (replay_) listeners.push_back(replay_.get());
  }

  // Throws Failure (kUsageFault) if something records already.
  ExchangeListener* Record(const std::string& file, bool showSecrets) {
    if (recorder_) throw Failure(kUsageFault, "the session is recorded already");
    recorder_ = std::make_unique<SessionRecorder>(file, showSecrets);
    return recorder_.get();
  }

  // True if a command was not the recorded one.
  bool Differ() const { return replay_ && replay_->Differs(); }

  // To be called when all readers are closed: throws Failure if the recording is not whole.
  void Finish() {
    if (recorder_) recorder_->Finish();
  }

 private:
  std::unique_ptr<Replay> replay_;
  std::unique_ptr<SessionRecorder> recorder_;
};

}  // namespace host
