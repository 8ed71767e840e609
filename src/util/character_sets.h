#pragma once

#include <string>

#include "platform/code_page.h"

namespace orvane {

// The platform's conversions from and to UTF-16.
struct CodePageCalls {
  decltype(&platform::ToWide) toWide;
  decltype(&platform::FromWide) fromWide;
};

// The text, given in the ANSI code page, in UTF-8. Throws std::runtime_error if the platform
// fails.
std::string AnsiToUtf8(const CodePageCalls& calls, const char* text);

// The text, given in UTF-8, in the OEM code page. Throws std::runtime_error if the platform fails.
std::string Utf8ToOem(const CodePageCalls& calls, const char* text);

}  // namespace orvane
