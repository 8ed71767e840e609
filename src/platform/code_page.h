#pragma once

#include <string>
#include <string_view>

namespace orvane::platform {

/// The text in the system's single-byte (ANSI) code page. Characters that it lacks become '?'.
std::string AnsiText(std::u16string_view text);

}  // namespace orvane::platform
