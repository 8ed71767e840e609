#pragma once

#include <string>
#include <string_view>

namespace host {

// A tag that a standard gives a meaning to.
struct ListedTag {
  std::string_view tag;  // one octet or two, upper-case digits
  std::string_view name;
  std::string_view standard;
};

// From the list of tags that comes with the program; null if it is not in it. In either case.
const ListedTag* FindListedTag(std::string_view tag);

// A tag's short text in the dictionary of the current folder, else its name in that list; empty if
// it has none.
std::string TagName(std::string_view tag);

}  // namespace host
