#include "platform/text_end.h"

#include <emmintrin.h>

#include <bit>
#include <cstdint>

namespace orvane::platform {

// The system's strnlen and memchr read one character at a time. Sixteen aligned characters are in
// one page, so all of them can be read if one of them can.
std::size_t LengthUpTo(const char* text, std::size_t most) {
  std::size_t length = 0;
  for (; length < most && reinterpret_cast<std::uintptr_t>(text + length) % 16 != 0; ++length) {
    if (text[length] == '\0') return length;
  }
  for (; most - length >= 16; length += 16) {
    const __m128i characters = _mm_load_si128(reinterpret_cast<const __m128i*>(text + length));
    const int ends = _mm_movemask_epi8(_mm_cmpeq_epi8(characters, _mm_setzero_si128()));
    if (ends != 0)
      return length + static_cast<std::size_t>(std::countr_zero(static_cast<unsigned>(ends)));
  }
  while (length < most && text[length] != '\0') ++length;
  return length;
}

}  // namespace orvane::platform
