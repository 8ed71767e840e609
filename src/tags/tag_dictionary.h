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

// A list of records under tags, and the file that stores it. Call Load before any other operation.
// An operation that throws std::bad_alloc has changed nothing.
class TagDictionary {
 public:
  // Appends the records of the file, once in the process's life. False if the file was opened but
  // could not be read to its end: no record is taken, and the next call tries again.
  bool Load();

  // Replaces the file. False on failure.
  bool Save();

  // Copies the records into `records`, which must have room for all. Gives their number.
  std::int32_t Copy(TagdictData* records) const;

  // The first record with this tag in either case; null if there is none.
  const PackedRecord* Find(const char* tag) const;

  // False if the tag is there already.
  bool Add(const TagdictData& record);

  // Compares the case too. False if the tag is not there.
  bool Delete(const char* tag);

  // Deletes the record's tag, then adds the record. False if it cannot be added.
  bool Update(const TagdictData& record);

 private:
  // The position of a record, and how many records were appended before it.
  struct Place {
    std::list<PackedRecord>::iterator record;
    std::uint64_t number;
  };
  // The keys are views of the tags in the records.
  using Index = std::unordered_multimap<std::string_view, Place, AnyCaseHash, AnyCaseEqual>;

  bool Append(const TagdictData& record, bool replace);

  std::list<PackedRecord> records_;
  Index index_;
  std::uint64_t appended_ = 0;
  bool loaded_ = false;
};

// The one instance, made by the first call and never released. Null if memory ran out.
TagDictionary* EnsureTagDictionary();

}  // namespace orvane
