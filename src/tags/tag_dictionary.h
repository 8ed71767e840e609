#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "orvane.h"

namespace orvane {

// A list of records under tags, and the file that it is kept in. The caller runs Load before any
// other operation. What throws std::bad_alloc has changed nothing.
class TagDictionary {
 public:
  // Appends the records of the file, once in the process's life. False if a file was opened and
  // could not be read through: nothing of it is taken, and the next call tries again.
  bool Load();

  // Replaces the file. False if that failed.
  bool Save();

  // Gives the number of records, after copying them into an array of at least that size.
  std::int32_t Copy(TagdictData* records) const;

  // The first record with this tag in either case; null if there is none.
  const TagdictData* Find(const char* tag) const;

  // False if the tag is there already.
  bool Add(const TagdictData& record);

  // Case counts. False if the tag is not there.
  bool Delete(const char* tag);

  // Deletes the record's tag, then adds the record. False if it could not be added.
  bool Update(const TagdictData& record);

 private:
  // A tag in upper case with zeros behind it. The last character of a record's is always zero, so
  // that no longer tag equals it.
  using Key = std::array<char, sizeof(TagdictData::tag)>;

  // The keys stand close together: a search reads nothing else.
  struct Entry {
    Key key;
    std::unique_ptr<TagdictData> record;
  };
  using Entries = std::vector<Entry>;

  static Key MakeKey(const char* tag);
  static Entry MakeEntry(const TagdictData& record);
  static bool Contains(Entries::const_iterator begin, Entries::const_iterator end, const Key& key);
  static Entries::iterator FindExact(Entries::iterator begin, Entries::iterator end,
                                     const char* tag);

  Entries entries_;
  bool loaded_ = false;
};

// The one instance; made by the first call, never released. Null if memory ran out.
TagDictionary* EnsureTagDictionary();

}  // namespace orvane
