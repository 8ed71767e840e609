#pragma once

#include <span>
#include <string_view>

namespace host {

// A word that the shell explains: a command of the language, a variable that the card fills, or a
// word that begins a line.
struct Entry {
  std::string_view name;   // as typed, such as @strmid, %RESP or :vars
  std::string_view usage;  // the name and its arguments
  std::string_view help;
};

std::span<const Entry> ScriptWords();  // of scripts, in the order of their list
std::span<const Entry> ShellWords();   // only in orvane shell

// The entry of this name from either list, in any case; its first sign may be missing. Null if
// there is none.
const Entry* FindEntry(std::string_view name);

}  // namespace host
