#pragma once

#include <string>
#include <string_view>

namespace host {

// Convert between UTF-8, the program's text, and UTF-16, the system's. Malformed text becomes
// U+FFFD.
std::wstring ToWide(std::string_view text);
std::string FromWide(std::wstring_view text);

}  // namespace host
