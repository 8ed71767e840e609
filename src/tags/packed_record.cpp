#include "tags/packed_record.h"

#include <cstddef>
#include <cstring>
#include <span>

static_assert(sizeof(TagdictData) == 1244 && offsetof(TagdictData, shortText) == 20 &&
              offsetof(TagdictData, longText) == 220);

namespace orvane {
namespace {

void Terminate(std::span<char> field) {
  if (std::memchr(field.data(), '\0', field.size()) == nullptr) field.back() = '\0';
}

}  // namespace

PackedRecord::PackedRecord(TagdictData record) {
  Terminate(record.tag);
  Terminate(record.shortText);
  Terminate(record.longText);
  *this = PackedRecord(record.tag, record.shortText, record.longText);
  const TagdictData unpacked = Unpack();
  if (std::memcmp(&unpacked, &record, sizeof record) == 0) return;
  octets_.assign(reinterpret_cast<const char*>(&record), sizeof record);
}

PackedRecord::PackedRecord(std::string_view tag, std::string_view shortText,
                           std::string_view longText) {
  octets_.reserve(tag.size() + shortText.size() + longText.size() + 2);
  octets_.append(tag).append(1, '\0').append(shortText).append(1, '\0').append(longText);
}

TagdictData PackedRecord::Unpack() const {
  TagdictData record{};
  if (octets_.size() == sizeof record) {
    std::memcpy(&record, octets_.data(), sizeof record);
    return record;
  }
  const char* text = octets_.c_str();
  for (char* const field : {record.tag, record.shortText, record.longText}) {
    const std::size_t size = std::strlen(text) + 1;
    std::memcpy(field, text, size);
    text += size;
  }
  return record;
}

}  // namespace orvane
