#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>
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

// The dictionary of the current directory. Everything that goes wrong is thrown as Failure, with
// the file as it was. Of several programs that change it at once, one waits for the other.

void PrintTags(std::ostream& out);

// From the dictionary, else from the program's own list of tags, and which of the two it is.
void PrintTag(std::ostream& out, std::string_view tag);

// An entry that is there already stays, unless it is to be replaced.
void AddTag(const TagEntry& entry, bool replace);

void RemoveTag(std::string_view tag);

// Adds or replaces all entries of a list and gives their number.
size_t ImportTags(const std::vector<TagEntry>& entries);

// Reads a list from a file or, for "-", standard input: a line an entry, TAG NAME or
// TAG NAME | TEXT; empty lines and lines that begin with # say nothing.
std::vector<TagEntry> ReadTagList(const std::string& file);

}  // namespace host
