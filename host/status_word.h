#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace host {

enum class Standing { kSuccess, kWarning, kError };

// How a status word, four upper-case hexadecimal digits, is to be taken.
Standing StandingOf(std::string_view statusWord);

// What it says, in the words of ISO/IEC 7816-4.
std::string DescribeStatusWord(std::string_view statusWord);

// False where no card gives these four digits as a status word (ISO/IEC 7816-3).
bool LooksLikeStatusWord(std::string_view digits);

// How much data 61xx and 6Cxx tell of; none for any other word.
std::optional<size_t> DataOffered(std::string_view statusWord);

}  // namespace host
