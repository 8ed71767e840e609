#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace orvane::platform {

// A character set of narrow text, under its Windows number. kAnsi and kOem are the system's own
// settings at the time of the call. On POSIX both mean the character set of the environment's
// locale, or UTF-8 in the C locale.
enum class CodePage : unsigned { kAnsi = 0, kOem = 1, kUtf8 = 65001 };

// The result of a conversion.
struct Conversion {
  std::size_t units = 0;  // the units that the result takes, its terminator included; 0 on failure
  bool noTranslation = false;  // the failure is that the system cannot translate the text
};

// Converts a zero-terminated text to UTF-16. An empty area only asks for the size; an area that is
// too small is a failure. Bytes that do not map become U+FFFD.
Conversion ToWide(CodePage from, const char* text, std::span<char16_t> out);

// Converts a zero-terminated text from UTF-16 in the same way. Characters that do not map become
// '?' or the system's own substitute.
Conversion FromWide(CodePage to, const char16_t* text, std::span<char> out);

// Converts a text to the system's ANSI code page. Characters that it lacks become '?'.
std::string AnsiText(std::u16string_view text);

}  // namespace orvane::platform
