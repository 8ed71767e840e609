#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "host/exchange_listener.h"
#include "host/options.h"
#include "recordings/recording.h"

namespace host {

// Throws ScriptFailure for a file that is no recording, kFileFault for one that cannot be read.
recordings::Recording ReadRecordingFile(const std::string& file);

// Puts a recording in the place of the simulators' card. Throws Failure (kExpectationFailed) after
// the first command that differs from the recording. Only one may exist at a time.
class Replay : public ExchangeListener {
 public:
  // Throws like ReadRecordingFile, also for a recording of a payment HSM.
  Replay(const std::string& file, bool anyOrder);
  Replay(const Replay&) = delete;
  Replay& operator=(const Replay&) = delete;
  ~Replay() override;

  void Opened(size_t, const ReaderAddress&, bool, bool) override {}
  void CardReset(size_t, const std::optional<std::string>&, const Timing&) override {}
  void Exchanged(const CardExchange& exchange) override;

  // True from the first command on that differs from the recording.
  bool Differs() const { return differs_; }

  // Makes a kind's simulator replay the recording, unless it does so already.
  void BeginIn(int32_t kind, void* simulator);

 private:
  using Differed = int64_t();  // see SimulatorDiffered in simulator.h

  std::string file_;
  bool anyOrder_;
  recordings::Recording recording_;
  std::map<int32_t, Differed*> simulators_;  // by kind
  size_t commands_ = 0;
  bool differs_ = false;
};

// Makes a kind's simulator replay the recording, if there is one.
void ReplayIn(int32_t kind, void* simulator);

// Null unless readers are simulated and --replay or ORVANE_CARD names a recording.
std::unique_ptr<Replay> ReplayFor(const Options& options);

}  // namespace host
