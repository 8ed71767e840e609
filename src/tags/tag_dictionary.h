#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <string_view>
#include <unordered_map>

#include "orvane.h"
#include "tags/packed_record.h"
#include "util/any_case.h"

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
  const PackedRecord* Find(const char* tag) const;

  // False if the tag is there already.
  bool Add(const TagdictData& record);

  // Case counts. False if the tag is not there.
  bool Delete(const char* tag);

  // Deletes the record's tag, then adds the record. False if it could not be added.
  bool Update(const TagdictData& record);

 private:
  // Where a record stands, and how many were appended before it.
  struct Place {
    std::list<PackedRecord>::iterator record;
    std::uint64_t number;
  };
  // By the tags that the records hold.
  using Index = std::unordered_multimap<std::string_view, Place, AnyCaseHash, AnyCaseEqual>;

  bool Append(const TagdictData& record, bool replace);

  std::list<PackedRecord> records_;
  Index index_;
  std::uint64_t appended_ = 0;
  bool loaded_ = false;
};

// The one instance; made by the first call, never released. Null if memory ran out.
TagDictionary* EnsureTagDictionary();

}  // namespace orvane
