#pragma once

// A triple-DES key of the virtual card.

#include "common/octets.h"

namespace simulator {

constexpr size_t kBlockSize = 8;

// Derived from an issuer's master key of 16 octets and the card's serial number of 8 octets. So a
// card whose keys become known reveals no other card's keys.
class CardKey {
 public:
  CardKey(const Octets& masterKey, const Octets& serialNumber);

  // Encrypts one block.
  Octets Encrypt(const Octets& block) const;

  // The retail MAC (ISO/IEC 9797-1, algorithm 3, padding method 2) with `start` as its first
  // chaining value.
  Octets Mac(const Octets& start, const Octets& data) const;

 private:
  Octets key_;  // K1 K2; empty, like every result, on a machine that forbids triple DES
};

}  // namespace simulator
