#pragma once

#include <span>
#include <string_view>

namespace host {

// What is worth a sentence at the desk: a command of the language, a variable that the card fills,
// a word that opens a line.
struct Entry {
  std::string_view name;   // as it is typed, such as @strmid, %RESP or :vars
  std::string_view usage;  // the name with what belongs to it
  std::string_view help;
};

std::span<const Entry> ScriptWords();  // of scripts, in the order in which they are listed
std::span<const Entry> ShellWords();   // what orvane shell takes besides

// An entry of either by its name, in any case; its first sign may be missing. Null if there is
// none.
const Entry* FindEntry(std::string_view name);

}  // namespace host
