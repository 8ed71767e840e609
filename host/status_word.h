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

// True for a pattern of status words: four digits, X for any, and others behind "or", as in
// "61XX or 9000"; in either case.
bool IsPattern(std::string_view text);
bool FitsPattern(std::string_view statusWord, std::string_view pattern);

// False where no card gives these four digits as a status word (ISO/IEC 7816-3).
bool LooksLikeStatusWord(std::string_view digits);

// How much data 61xx and 6Cxx tell of; none for any other word.
std::optional<size_t> DataOffered(std::string_view statusWord);

}  // namespace host
