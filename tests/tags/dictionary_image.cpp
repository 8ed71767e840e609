#include "tags/dictionary_image.h"

namespace orvane_test {

std::ostream& operator<<(std::ostream& out, const Texts& texts) {
  return out << '{' << texts.tag << ", " << texts.shortText << ", " << texts.longText << '}';
}

TagdictData MakeRecord(const Texts& texts) {
  TagdictData record{};
  texts.tag.copy(record.tag, sizeof record.tag - 1);
  texts.shortText.copy(record.shortText, sizeof record.shortText - 1);
  texts.longText.copy(record.longText, sizeof record.longText - 1);
  return record;
}

Texts TextsOf(const TagdictData& record) { return {record.tag, record.shortText, record.longText}; }

std::string LittleEndian(std::uint64_t number, std::size_t octets) {
  std::string text;
  for (std::size_t i = 0; i < octets; ++i) text += static_cast<char>(number >> 8 * i & 0xFF);
  return text;
}

std::string FileText(const std::string& text) {
  const auto size = text.size();
  return (size < 255 ? LittleEndian(size, 1) : LittleEndian(size << 8 | 0xFF, 3)) + text;
}

std::string FileImage(const std::vector<Texts>& records) {
  std::string image = LittleEndian(records.size(), 4);
  for (const Texts& texts : records) {
    image += FileText(texts.tag) + FileText(texts.shortText) + FileText(texts.longText);
  }
  return image;
}

}  // namespace orvane_test
