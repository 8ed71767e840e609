#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/desk/vocabulary.h"

namespace host {

// The characters that end a word in a line that is being typed.
inline constexpr std::string_view kWordBreaks = " \t(),=";

// A word that may come next.
struct Proposal {
  std::string text;
  const Entry* entry;  // null if there is no help for it
};

// The octet at which the word that is being typed begins, in the line up to the cursor.
size_t WordBegin(std::string_view before);

// The script words that may continue the line up to the cursor: commands, variables (names with
// their %, in any order), and inside @OPENREADER's parentheses the names from `readers`, without
// their blanks. Case does not count.
std::vector<Proposal> ProposeWords(std::string_view before,
                                   const std::vector<std::string>& variables,
                                   const std::function<std::vector<std::string>()>& readers);

// True if the text begins with the word, in any case.
bool Begins(std::string_view text, std::string_view word);

// The PC/SC and BSIT readers that are there, in the form that @OPENREADER takes.
std::vector<std::string> ReaderProposals();

}  // namespace host
