#pragma once

#include <cstddef>

namespace orvane::platform {

// The number of characters before the terminator, or `most` if there is none among the first
// `most`. Never reads memory behind the terminator that might be unreadable.
std::size_t LengthUpTo(const char* text, std::size_t most);

}  // namespace orvane::platform
