#pragma once

namespace crypto {

// Makes libgcrypt ready at the first call, unless the host did so before. False if there is only a
// libgcrypt that is too old.
bool StartGcrypt();

}  // namespace crypto
