#pragma once

#include <span>

#include "common/octets.h"

namespace simulator {

// A card as a reader sees it.
class SmartCard {
 public:
  virtual ~SmartCard() = default;

  virtual Octets Atr() const = 0;

  // Power off and on.
  virtual void Reset() = 0;

  // The response data followed by the status word; nothing if the card is mute.
  virtual Octets Transmit(std::span<const uint8_t> command) = 0;

  // PC/SC's code for the last command, to which the card was mute: by itself SCARD_F_COMM_ERROR.
  virtual uint32_t FailureCode() const { return 0x80100013; }
};

}  // namespace simulator
