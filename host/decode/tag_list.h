#pragma once

#include <string>
#include <string_view>

namespace host {

// A tag to which a standard gives a meaning.
struct ListedTag {
  std::string_view tag;  // one octet or two, upper-case digits
  std::string_view name;
  std::string_view standard;
};

// Looks a tag up, in either case, in the program's own list; null if it is not there.
const ListedTag* FindListedTag(std::string_view tag);

// A tag's short text in the dictionary of the current folder, or else its name in the program's
// list; empty if there is none.
std::string TagName(std::string_view tag);

}  // namespace host
