#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/desk/vocabulary.h"

namespace host {

// What ends a word of a line that is being typed.
inline constexpr std::string_view kWordBreaks = " \t(),=";

// A word that may stand where one types.
struct Proposal {
  std::string text;
  const Entry* entry;  // null if there is nothing to tell of it
};

// Where the word that is being typed begins: the octet of the line up to the cursor.
size_t WordBegin(std::string_view before);

// The words of scripts that go on from the line up to the cursor: commands, variables (names with
// their %, in any order), and in the parentheses of @OPENREADER what readers gives, without its
// blanks. Upper and lower case are the same.
std::vector<Proposal> ProposeWords(std::string_view before,
                                   const std::vector<std::string>& variables,
                                   const std::function<std::vector<std::string>()>& readers);

// True if a word may go on as the text does, in any case.
bool Begins(std::string_view text, std::string_view word);

// The addresses of the readers that can be asked for their names, as @OPENREADER takes them.
std::vector<std::string> ReaderProposals();

}  // namespace host
