#include "platform/text_end.h"

#include <cstring>

namespace orvane::platform {

std::size_t LengthUpTo(const char* text, std::size_t most) { return ::strnlen(text, most); }

}  // namespace orvane::platform
