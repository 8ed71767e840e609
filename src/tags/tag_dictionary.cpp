#include "tags/tag_dictionary.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string>

#include "platform/input_file.h"
#include "platform/replace_file.h"
#include "tags/dictionary_file.h"

namespace orvane {
namespace {

constexpr char kFileName[] = "dictdata.bin";

unsigned char Upper(char c) {
  return static_cast<unsigned char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
}

bool IsSameInAnyCase(const char* left, const char* right) {
  for (; Upper(*left) == Upper(*right); ++left, ++right) {
    if (*left == '\0') return true;
  }
  return false;
}

}  // namespace

bool TagDictionary::Load() {
  if (loaded_) return true;
  platform::InputFile file(kFileName);
  if (!file) return true;
  std::list<PackedRecord> records = ReadRecords(file);
  if (file.Failed()) return false;
  records_.splice(records_.end(), records);
  loaded_ = true;
  return true;
}

bool TagDictionary::Save() {
  std::string image;
  AppendCount(image, static_cast<std::int32_t>(records_.size()));
  for (const PackedRecord& record : records_) AppendRecord(image, record.Unpack());
  if (!platform::ReplaceFileContents(kFileName, image)) return false;
  loaded_ = true;  // what stands in the file now is here already
  return true;
}

std::int32_t TagDictionary::Copy(TagdictData* records) const {
  for (const PackedRecord& record : records_) *records++ = record.Unpack();
  return static_cast<std::int32_t>(records_.size());
}

const PackedRecord* TagDictionary::Find(const char* tag) const {
  for (const PackedRecord& record : records_) {
    if (IsSameInAnyCase(record.Tag(), tag)) return &record;
  }
  return nullptr;
}

bool TagDictionary::Add(const TagdictData& record) {
  std::list added = {PackedRecord(record)};
  if (Find(added.front().Tag()) != nullptr) return false;
  records_.splice(records_.end(), added);
  return true;
}

bool TagDictionary::Delete(const char* tag) {
  const auto found = std::find_if(
      records_.begin(), records_.end(),
      [tag](const PackedRecord& record) { return std::strcmp(record.Tag(), tag) == 0; });
  if (found == records_.end()) return false;
  records_.erase(found);
  return true;
}

bool TagDictionary::Update(const TagdictData& record) {
  std::list added = {PackedRecord(record)};  // before anything is deleted: this alone can fail
  const char* const tag = added.front().Tag();
  Delete(tag);
  if (Find(tag) != nullptr) return false;
  records_.splice(records_.end(), added);
  return true;
}

TagDictionary* EnsureTagDictionary() {
  static TagDictionary* instance = nullptr;
  if (instance == nullptr) instance = new (std::nothrow) TagDictionary;
  return instance;
}

}  // namespace orvane
