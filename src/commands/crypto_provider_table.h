#pragma once

#include "commands/crypto_provider.h"

namespace orvane {

// The provider's entries, bound at the first call; null where one is not to be had.
const CryptoProvider& BoundCryptoProvider();

}  // namespace orvane
