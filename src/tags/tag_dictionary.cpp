#include "tags/tag_dictionary.h"

#include <functional>
#include <new>
#include <string>

#include "platform/input_file.h"
#include "platform/replace_file.h"
#include "tags/dictionary_file.h"

namespace orvane {
namespace {

constexpr char kFileName[] = "dictdata.bin";

// The entry of the first record with an equal tag; the index's end if there is none.
template <typename Index, typename Equal>
auto FindFirst(Index& index, std::string_view tag, Equal isEqual) {
  auto first = index.end();
  const auto [begin, end] = index.equal_range(tag);
  for (auto entry = begin; entry != end; ++entry) {
    if (!isEqual(entry->first, tag)) continue;
    if (first == index.end() || entry->second.number < first->second.number) first = entry;
  }
  return first;
}

}  // namespace

bool TagDictionary::Load() {
  if (loaded_) return true;
  platform::InputFile file(kFileName);
  if (!file) return true;
  std::list<PackedRecord> records = ReadRecords(file);
  if (file.Failed()) return false;
  Index index = index_;
  index.reserve(index.size() + records.size());
  for (auto record = records.begin(); record != records.end(); ++record) {
    index.emplace(record->Tag(), Place{record, appended_++});
  }
  index_.swap(index);
  records_.splice(records_.end(), records);
  loaded_ = true;
  return true;
}

bool TagDictionary::Save() {
  std::string image;
  AppendCount(image, static_cast<std::int32_t>(records_.size()));
  for (const PackedRecord& record : records_) AppendRecord(image, record.Unpack());
  if (!platform::ReplaceFileContents(kFileName, image)) return false;
  loaded_ = true;  // the file holds these records: a later load would add them twice
  return true;
}

std::int32_t TagDictionary::Copy(TagdictData* records) const {
  for (const PackedRecord& record : records_) *records++ = record.Unpack();
  return static_cast<std::int32_t>(records_.size());
}

const PackedRecord* TagDictionary::Find(const char* tag) const {
  const auto found = FindFirst(index_, tag, AnyCaseEqual());
  return found != index_.end() ? &*found->second.record : nullptr;
}

bool TagDictionary::Add(const TagdictData& record) { return Append(record, false); }

bool TagDictionary::Update(const TagdictData& record) { return Append(record, true); }

bool TagDictionary::Delete(const char* tag) {
  const auto found = FindFirst(index_, tag, std::equal_to<std::string_view>());
  if (found == index_.end()) return false;
  const auto record = found->second.record;
  index_.erase(found);
  records_.erase(record);
  return true;
}

bool TagDictionary::Append(const TagdictData& record, bool replace) {
  // Everything that can fail comes before the deletion: after it, the index has the room.
  std::list added = {PackedRecord(record)};
  const char* const tag = added.front().Tag();
  Index entry;
  entry.emplace(tag, Place{added.begin(), appended_});
  if (replace) Delete(tag);
  if (Find(tag) != nullptr) return false;
  index_.insert(entry.extract(entry.begin()));
  records_.splice(records_.end(), added);
  ++appended_;
  return true;
}

TagDictionary* EnsureTagDictionary() {
  static TagDictionary* instance = nullptr;
  if (instance == nullptr) instance = new (std::nothrow) TagDictionary;
  return instance;
}

}  // namespace orvane
