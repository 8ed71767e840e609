#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace orvane::platform {

// A character set of narrow text, under its Windows number. The first two are the system's own, as
// they are set at the time of the call. On POSIX both are the character set of the environment's
// locale, or UTF-8 in the C locale.
enum class CodePage : unsigned { kAnsi = 0, kOem = 1, kUtf8 = 65001 };

// What a conversion came to.
struct Conversion {
  std::size_t units = 0;       // what the result takes, its terminator included; 0 on failure
  bool noTranslation = false;  // it failed because the system has no translation for the text
};

// Converts a zero-terminated text to UTF-16. With an empty area it only tells the size; an area
// that is too small is a failure. Bytes that do not map become U+FFFD.
Conversion ToWide(CodePage from, const char* text, std::span<char16_t> out);

// Converts a zero-terminated text from UTF-16 in the same way. Characters that do not map become
// '?' or what else the system puts in their place.
Conversion FromWide(CodePage to, const char16_t* text, std::span<char> out);

// The text in the system's ANSI code page. Characters that it lacks become '?'.
std::string AnsiText(std::u16string_view text);

}  // namespace orvane::platform
