#include "tags/tag_dictionary.h"

#include <cstring>
#include <new>
#include <string>
#include <utility>

#include "platform/input_file.h"
#include "platform/replace_file.h"
#include "tags/dictionary_file.h"

namespace orvane {
namespace {

constexpr char kFileName[] = "dictdata.bin";

unsigned char Upper(char c) {
  return static_cast<unsigned char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
}

}  // namespace

bool TagDictionary::AnyCaseOrder::operator()(const char* left, const char* right) const {
  for (; *left != '\0' && Upper(*left) == Upper(*right); ++left) ++right;
  return Upper(*left) < Upper(*right);
}

TagDictionary::Table::Table(std::list<PackedRecord> list) : records(std::move(list)) {
  for (auto record = records.begin(); record != records.end(); ++record) {
    index.emplace_hint(index.end(), record->Tag(), record);  // files are often in order
  }
}

void TagDictionary::Table::Append(Table&& other) {
  records.splice(records.end(), other.records);
  if (index.empty()) index.swap(other.index);
  index.merge(other.index);
}

bool TagDictionary::Load() {
  if (loaded_) return true;
  platform::InputFile file(kFileName);
  if (!file) return true;
  Table table(ReadRecords(file));
  if (file.Failed()) return false;
  table_.Append(std::move(table));
  loaded_ = true;
  return true;
}

bool TagDictionary::Save() {
  std::string image;
  AppendCount(image, static_cast<std::int32_t>(table_.records.size()));
  for (const PackedRecord& record : table_.records) AppendRecord(image, record.Unpack());
  if (!platform::ReplaceFileContents(kFileName, image)) return false;
  loaded_ = true;  // what stands in the file now is here already
  return true;
}

std::int32_t TagDictionary::Copy(TagdictData* records) const {
  for (const PackedRecord& record : table_.records) *records++ = record.Unpack();
  return static_cast<std::int32_t>(table_.records.size());
}

const PackedRecord* TagDictionary::Find(const char* tag) const {
  const auto [first, end] = table_.index.equal_range(tag);
  return first == end ? nullptr : &*first->second;
}

bool TagDictionary::Add(const TagdictData& record) {
  Table added({PackedRecord(record)});
  if (Find(added.records.front().Tag()) != nullptr) return false;
  table_.Append(std::move(added));
  return true;
}

bool TagDictionary::Delete(const char* tag) {
  const auto [first, end] = table_.index.equal_range(tag);
  for (auto entry = first; entry != end; ++entry) {
    if (std::strcmp(entry->first, tag) != 0) continue;
    const auto record = entry->second;
    table_.index.erase(entry);
    table_.records.erase(record);
    return true;
  }
  return false;
}

bool TagDictionary::Update(const TagdictData& record) {
  Table added({PackedRecord(record)});  // before anything is deleted: this alone can fail
  const char* const tag = added.records.front().Tag();
  Delete(tag);
  if (Find(tag) != nullptr) return false;
  table_.Append(std::move(added));
  return true;
}

TagDictionary* EnsureTagDictionary() {
  static TagDictionary* instance = nullptr;
  if (instance == nullptr) instance = new (std::nothrow) TagDictionary;
  return instance;
}

}  // namespace orvane
