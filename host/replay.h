#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "host/exchange_listener.h"
#include "host/options.h"
#include "recordings/recording.h"

namespace host {

// Throws ScriptFailure for a file that is no recording, kFileFault for one that can't be read.
recordings::Recording ReadRecordingFile(const std::string& file);

// Puts a recording in the place of the simulators' card, and throws Failure (kExpectationFailed)
// behind the first command that is not as recorded. There is one of these at a time.
class Replay : public ExchangeListener {
 public:
  // Throws as ReadRecordingFile, also for a recording of something else than cards.
  Replay(const std::string& file, bool anyOrder);
  Replay(const Replay&) = delete;
  Replay& operator=(const Replay&) = delete;
  ~Replay() override;

  void Opened(size_t, const ReaderAddress&, bool, bool) override {}
  void CardReset(size_t, const std::optional<std::string>&, const Timing&) override {}
  void Exchanged(const CardExchange& exchange) override;

  // True from the first command on that is not as recorded.
  bool Differs() const { return differs_; }

  // Has the simulator of a kind of reader replay it, unless that has been done.
  void BeginIn(int32_t kind, void* simulator);

 private:
  using Differed = int64_t();  // as SimulatorDiffered of simulator.h

  std::string file_;
  bool anyOrder_;
  recordings::Recording recording_;
  std::map<int32_t, Differed*> simulators_;  // by kinds
  size_t commands_ = 0;
  bool differs_ = false;
};

// Has the simulator of a kind of reader replay what is to be replayed, if anything is.
void ReplayIn(int32_t kind, void* simulator);

// Null where neither --replay nor, on simulators, the environment's ORVANE_CARD names a recording.
std::unique_ptr<Replay> ReplayFor(const Options& options);

}  // namespace host
