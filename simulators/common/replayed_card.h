#pragma once

#include <memory>
#include <string>
#include <vector>

#include "common/smart_card.h"
#include "recordings/recording.h"

namespace simulator {

// What a recorded card does, and how strictly its commands are taken.
struct Replay {
  recordings::Recording recording;
  bool anyOrder = false;  // a command that is recorded later may come earlier
  std::string name;       // of the file, for messages; empty where nobody is to be told
};

// A card that gives the recorded responses to the recorded commands. One that is not the next of
// them gets 6F00, and the next one stays expected; the first one that comes so is noted.
class ReplayedCard : public SmartCard {
 public:
  explicit ReplayedCard(std::shared_ptr<const Replay> replay);

  // What is recorded last before the command that is expected, else first.
  Octets Atr() const override;
  void Reset() override {}
  Octets Transmit(std::span<const uint8_t> command) override;
  uint32_t FailureCode() const override { return failureCode_; }

  // The line that was expected when another command came for the first time; the one behind the
  // last where all had come. 0 if none has.
  size_t DifferedAt() const { return differedAt_; }

 private:
  size_t Find(const std::string& digits) const;
  void NoteDifference(const std::string& digits);

  std::shared_ptr<const Replay> replay_;
  std::vector<bool> played_;  // of the recording's events
  size_t next_ = 0;           // the event that is expected
  size_t commands_ = 0;
  size_t differedAt_ = 0;
  uint32_t failureCode_ = SmartCard::FailureCode();
};

}  // namespace simulator
