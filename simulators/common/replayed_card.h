#pragma once

#include <memory>
#include <string>
#include <vector>

#include "common/smart_card.h"
#include "recordings/recording.h"

namespace simulator {

// What a recorded card answers, and in which order it takes commands.
struct Replay {
  recordings::Recording recording;
  bool anyOrder = false;  // a command that was recorded later may come earlier
  std::string name;       // of the file, for messages; empty: no messages
};

// A card that gives the recorded responses to the recorded commands. A command that is not the
// expected one gets 6F00; the expected one stays the same, and the first such difference is noted.
class ReplayedCard : public SmartCard {
 public:
  explicit ReplayedCard(std::shared_ptr<const Replay> replay);

  // The ATR that was recorded last before the expected command; else the first one behind it.
  Octets Atr() const override;
  void Reset() override {}
  Octets Transmit(std::span<const uint8_t> command) override;
  uint32_t FailureCode() const override { return failureCode_; }

  // The line that was expected when another command came for the first time; the line after the
  // last one if all were played. 0 if no such command came.
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
