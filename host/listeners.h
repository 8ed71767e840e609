#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/failure.h"
#include "host/options.h"
#include "host/replay.h"
#include "host/session_recorder.h"

namespace host {

// The recorder and the replay of a session, if the options ask for them. It must outlive the
// readers.
class Listeners {
 public:
  explicit Listeners(const Options& options)
      : replay_(ReplayFor(options)), recorder_(RecorderFor(options)) {}

  void AddTo(std::vector<ExchangeListener*>& listeners) const {
    if (recorder_) listeners.push_back(recorder_.get());
    if (replay_) listeners.push_back(replay_.get());
  }

  // Throws Failure (kUsageFault) if there is a recorder already.
  ExchangeListener* Record(const std::string& file, bool showSecrets) {
    if (recorder_) throw Failure(kUsageFault, "the session is recorded already");
    recorder_ = std::make_unique<SessionRecorder>(file, showSecrets);
    return recorder_.get();
  }

  // True if a command differed from the recorded one.
  bool Differ() const { return replay_ && replay_->Differs(); }

  // Call it when all readers are closed. Throws Failure if the recording is incomplete.
  void Finish() {
    if (recorder_) recorder_->Finish();
  }

 private:
  std::unique_ptr<Replay> replay_;
  std::unique_ptr<SessionRecorder> recorder_;
};

}  // namespace host
