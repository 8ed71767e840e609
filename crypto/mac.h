#pragma once

#include "block_cipher.h"

namespace crypto {

// The MAC of data of any length, by ISO/IEC 9797-1 with padding method 2: algorithm 1 (CBC-MAC)
// for a key of 8 octets, algorithm 3 (retail MAC) for one of 16, and for one of 24 as algorithm 3
// with a third key of its own for the last encryption. mac is the first chaining value at the
// start and the MAC at the end. False for a key of another length.
bool ComputeMac(Octets key, Octets data, Block& mac);

}  // namespace crypto
