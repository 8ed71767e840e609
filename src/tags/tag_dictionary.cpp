#include "tags/tag_dictionary.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <new>
#include <span>
#include <string>
#include <utility>

#include "platform/input_file.h"
#include "platform/replace_file.h"
#include "tags/dictionary_file.h"

static_assert(sizeof(TagdictData) == 1244 && offsetof(TagdictData, shortText) == 20 &&
              offsetof(TagdictData, longText) == 220);

namespace orvane {
namespace {

constexpr char kFileName[] = "dictdata.bin";

void Terminate(std::span<char> field) {
  if (std::find(field.begin(), field.end(), '\0') == field.end()) field.back() = '\0';
}

}  // namespace

TagDictionary::Key TagDictionary::MakeKey(const char* tag) {
  Key key{};
  for (std::size_t i = 0; i < key.size() && tag[i] != '\0'; ++i) {
    const bool isLower = tag[i] >= 'a' && tag[i] <= 'z';
    key[i] = isLower ? static_cast<char>(tag[i] - 'a' + 'A') : tag[i];
  }
  return key;
}

TagDictionary::Entry TagDictionary::MakeEntry(const TagdictData& record) {
  auto own = std::make_unique<TagdictData>(record);
  Terminate(own->tag);
  Terminate(own->shortText);
  Terminate(own->longText);
  return {MakeKey(own->tag), std::move(own)};
}

bool TagDictionary::Load() {
  if (loaded_) return true;
  platform::InputFile file(kFileName);
  if (!file) return true;
  auto records = ReadRecords(file);
  if (file.Failed()) return false;
  entries_.reserve(entries_.size() + records.size());
  for (auto& record : records) entries_.push_back({MakeKey(record->tag), std::move(record)});
  loaded_ = true;
  return true;
}

bool TagDictionary::Save() {
  std::string image;
  AppendCount(image, static_cast<std::int32_t>(entries_.size()));
  for (const Entry& entry : entries_) AppendRecord(image, *entry.record);
  if (!platform::ReplaceFileContents(kFileName, image)) return false;
  loaded_ = true;  // what stands in the file now is here already
  return true;
}

std::int32_t TagDictionary::Copy(TagdictData* records) const {
  for (const Entry& entry : entries_) *records++ = *entry.record;
  return static_cast<std::int32_t>(entries_.size());
}

const TagdictData* TagDictionary::Find(const char* tag) const {
  const Key key = MakeKey(tag);
  for (const Entry& entry : entries_) {
    if (entry.key == key) return entry.record.get();
  }
  return nullptr;
}

bool TagDictionary::Contains(Entries::const_iterator begin, Entries::const_iterator end,
                             const Key& key) {
  return std::any_of(begin, end, [&](const Entry& entry) { return entry.key == key; });
}

TagDictionary::Entries::iterator TagDictionary::FindExact(Entries::iterator begin,
                                                          Entries::iterator end, const char* tag) {
  const Key key = MakeKey(tag);
  return std::find_if(begin, end, [&](const Entry& entry) {
    return entry.key == key && std::strcmp(entry.record->tag, tag) == 0;
  });
}

bool TagDictionary::Add(const TagdictData& record) {
  Entry entry = MakeEntry(record);
  if (Contains(entries_.begin(), entries_.end(), entry.key)) return false;
  entries_.push_back(std::move(entry));
  return true;
}

bool TagDictionary::Delete(const char* tag) {
  const auto found = FindExact(entries_.begin(), entries_.end(), tag);
  if (found == entries_.end()) return false;
  entries_.erase(found);
  return true;
}

bool TagDictionary::Update(const TagdictData& record) {
  // In place before anything is deleted: this alone can fail.
  entries_.push_back(MakeEntry(record));
  const auto old =
      FindExact(entries_.begin(), std::prev(entries_.end()), entries_.back().record->tag);
  if (old != std::prev(entries_.end())) entries_.erase(old);
  if (!Contains(entries_.begin(), std::prev(entries_.end()), entries_.back().key)) return true;
  entries_.pop_back();
  return false;
}

TagDictionary* EnsureTagDictionary() {
  static TagDictionary* instance = nullptr;
  if (instance == nullptr) instance = new (std::nothrow) TagDictionary;
  return instance;
}

}  // namespace orvane
