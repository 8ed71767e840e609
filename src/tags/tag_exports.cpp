#include <cstring>
#include <new>

#include "orvane.h"
#include "tags/tag_dictionary.h"
#include "tags/tag_parser.h"

TagParser* TagParsing_Init() { return new (std::nothrow) TagParser; }

std::int32_t TagParsing_Parse(TagParser* parser, const char* text) {
  if (parser == nullptr || text == nullptr) return 0;
  try {
    return parser->Parse(text) ? 1 : 0;
  } catch (...) {
    return 0;
  }
}

std::int32_t TagParsing_GetTag(TagParser* parser, const char* tag, char* out) {
  if (parser == nullptr || tag == nullptr || out == nullptr) return 0;
  std::memset(out, 0, sizeof(TagRecord));
  return parser->Find(tag, *reinterpret_cast<TagRecord*>(out)) ? 1 : 0;
}

void TagParsing_Free(TagParser* parser) { delete parser; }

namespace {

// Runs an operation of the dictionary, after a load that may fail; 0 if memory runs out.
template <typename Operation>
std::int32_t WithDictionary(const Operation& operation) {
  orvane::TagDictionary* const dictionary = orvane::EnsureTagDictionary();
  if (dictionary == nullptr) return 0;
  try {
    dictionary->Load();
    return operation(*dictionary) ? 1 : 0;
  } catch (...) {
    return 0;
  }
}

}  // namespace

using orvane::TagDictionary;

std::int32_t GetTagdict(TagdictData* records, std::int32_t* count) {
  return WithDictionary([&](const TagDictionary& dictionary) {
    *count = dictionary.Copy(records);
    return true;
  });
}

std::int32_t FindTagdictData(const char* tag, TagdictData* out) {
  return WithDictionary([&](const TagDictionary& dictionary) {
    const orvane::PackedRecord* const record = dictionary.Find(tag);
    if (record != nullptr) *out = record->Unpack();
    return record != nullptr;
  });
}

std::int32_t AddTagdictData(const TagdictData* record) {
  return WithDictionary([&](TagDictionary& dictionary) { return dictionary.Add(*record); });
}

std::int32_t DeleteTagdictData(const char* tag) {
  return WithDictionary([&](TagDictionary& dictionary) { return dictionary.Delete(tag); });
}

std::int32_t UpTagdictData(const TagdictData* record) {
  return WithDictionary([&](TagDictionary& dictionary) { return dictionary.Update(*record); });
}

std::int32_t FlushTagdict() {
  TagDictionary* const dictionary = orvane::EnsureTagDictionary();
  try {
    if (dictionary != nullptr && dictionary->Load()) dictionary->Save();
  } catch (...) {
    // The file and the records are as they were.
  }
  return 1;
}
