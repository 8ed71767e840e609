#pragma once

#include "commands/call.h"

namespace orvane {

// The script's cryptography: these commands prepare the arguments and shape the results of the
// provider's entries (crypto_provider.h), and compute nothing themselves. A value that is longer
// than the area it goes to, an entry that is not to be had and a result of an impossible length
// make a command fail with its value unchanged.
bool Des(Call& call);
bool DesCbc(Call& call);
bool Mac(Call& call);
bool SubKey(Call& call);
bool RsaPubEnc(Call& call);
bool Hash(Call& call);

}  // namespace orvane
