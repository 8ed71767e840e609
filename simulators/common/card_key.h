#pragma once

// A triple-DES key of the virtual card.

#include "common/octets.h"

namespace simulator {

constexpr size_t kBlockSize = 8;

// Derived from an issuer's master key of 16 octets and the serial number of the card, 8 octets. A
// card that gives away its keys gives away no other card's.
class CardKey {
 public:
  CardKey(const Octets& masterKey, const Octets& serialNumber);

  // Of one block.
  Octets Encrypt(const Octets& block) const;

  // The retail MAC (ISO/IEC 9797-1, algorithm 3 with padding method 2) that begins with the block
  // start.
  Octets Mac(const Octets& start, const Octets& data) const;

 private:
  Octets key_;  // K1 K2; like every result, empty on a machine that allows no triple DES
};

}  // namespace simulator
