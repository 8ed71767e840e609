#pragma once

#include <string>
#include <string_view>

namespace host {

enum class Standing { kSuccess, kWarning, kError };

// How a status word, four upper-case hexadecimal digits, is to be taken.
Standing StandingOf(std::string_view statusWord);

// What it says, in the words of ISO/IEC 7816-4.
std::string DescribeStatusWord(std::string_view statusWord);

}  // namespace host
