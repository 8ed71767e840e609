#pragma once

namespace crypto {

// Looks at libgcrypt before its first use. False if there is only one that is too old. It gets
// ready by itself, and its settings stay the host's: no locked memory is asked for, and none is
// switched off. What is ours is wiped instead, and libgcrypt wipes its handles and numbers; a key
// that came as the text of a script has been in ordinary memory before.
bool StartGcrypt();

}  // namespace crypto
