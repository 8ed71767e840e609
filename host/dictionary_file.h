#pragma once

#include <string>
#include <vector>

namespace host {

constexpr const char* kDictionaryFile = "dictdata.bin";

// What a record of the tag dictionary says, in UTF-8.
struct TagEntry {
  std::string tag;
  std::string name;
  std::string text;

  bool operator==(const TagEntry&) const = default;
};

// The dictionary of the current folder, in its order; empty if there is no file. Throws Failure
// (kFileFault) if it can't be read, or if it does not hold just as many records as it says. The
// library takes what it finds in such a file, and its functions have no room for the size of a list
// that may change meanwhile: this reads once.
std::vector<TagEntry> ReadDictionary();

}  // namespace host
