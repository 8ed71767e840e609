#pragma once

#include <cstddef>

namespace orvane::platform {

// The characters of a text before its terminator, or `most` if none stands among so many. Reads
// nothing behind a terminator that could not be read.
std::size_t LengthUpTo(const char* text, std::size_t most);

}  // namespace orvane::platform
