#pragma once

#include <string>
#include <string_view>

namespace host {

// Between UTF-8, the program's own text, and UTF-16, the system's. What is malformed becomes
// U+FFFD.
std::wstring ToWide(std::string_view text);
std::string FromWide(std::wstring_view text);

}  // namespace host
