#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace host {

enum class Standing { kSuccess, kWarning, kError };

// The class of a status word, which is four upper-case hexadecimal digits.
Standing StandingOf(std::string_view statusWord);

// The meaning of a status word, in the words of ISO/IEC 7816-4.
std::string DescribeStatusWord(std::string_view statusWord);

// False if no card gives these four digits as a status word (ISO/IEC 7816-3).
bool LooksLikeStatusWord(std::string_view digits);

// The number of octets that 61xx and 6Cxx announce; none for any other word.
std::optional<size_t> DataOffered(std::string_view statusWord);

}  // namespace host
