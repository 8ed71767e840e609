#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace host {

constexpr const char* kDictionaryFile = "dictdata.bin";

// A record of the tag dictionary, in UTF-8.
struct TagEntry {
  std::string tag;
  std::string name;
  std::string text;

  bool operator==(const TagEntry&) const = default;
};

// The dictionary of the current folder, in its order; empty if there is no file. Throws Failure
// (kFileFault) if it cannot be read, or does not hold exactly the number of records that it states.
// It reads the file itself, once: the library accepts any such file, and its functions cannot pass
// the size of a list that may change between two calls.
std::vector<TagEntry> ReadDictionary();

// Work on the dictionary of the current folder. Every fault is thrown as Failure, with the file as
// it was. If several programs change it at once, they wait for each other.

void PrintTags(std::ostream& out);

// Prints a tag from the dictionary, or else from the program's own list, and says which it was.
void PrintTag(std::ostream& out, std::string_view tag);

// Adds an entry. An existing one stays, unless `replace` is set.
void AddTag(const TagEntry& entry, bool replace);

void RemoveTag(std::string_view tag);

// Adds or replaces all entries of a list. Gives their number.
size_t ImportTags(const std::vector<TagEntry>& entries);

// Reads a list from a file or, for "-", standard input. Each line is an entry: TAG NAME or TAG NAME
// | TEXT. Empty lines and lines that begin with # are skipped.
std::vector<TagEntry> ReadTagList(const std::string& file);

}  // namespace host
