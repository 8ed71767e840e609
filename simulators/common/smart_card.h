#pragma once

#include <span>

#include "common/octets.h"

namespace simulator {

// A card as a reader sees it.
class SmartCard {
 public:
  virtual ~SmartCard() = default;

  virtual Octets Atr() const = 0;

  // Switches the power off and on.
  virtual void Reset() = 0;

  // The response data followed by the status word; empty if the card is mute.
  virtual Octets Transmit(std::span<const uint8_t> command) = 0;

  // PC/SC's code for the last command, if the card was mute; by default SCARD_F_COMM_ERROR.
  virtual uint32_t FailureCode() const { return 0x80100013; }
};

}  // namespace simulator
