#pragma once

#include "commands/crypto_provider.h"

namespace orvane {

// The provider's entries, bound on the first call; an entry that cannot be found is null.
const CryptoProvider& BoundCryptoProvider();

}  // namespace orvane
