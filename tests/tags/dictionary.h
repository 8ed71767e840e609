#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <vector>

#include "orvane.h"
#include "tags/working_folder.h"

namespace orvane_test {

constexpr char kDictionaryFile[] = "dictdata.bin";

// A record's tag, short text and long text.
using Texts = std::array<std::string, 3>;
using List = std::vector<Texts>;

// With zeros behind the texts, which fit their fields.
inline TagdictData MakeRecord(const Texts& texts) {
  TagdictData record{};
  texts[0].copy(record.tag, sizeof record.tag - 1);
  texts[1].copy(record.shortText, sizeof record.shortText - 1);
  texts[2].copy(record.longText, sizeof record.longText - 1);
  return record;
}

inline Texts TextsOf(const TagdictData& record) {
  return {record.tag, record.shortText, record.longText};
}

// What GetTagdict of a process lists. Tests keep it below 1,000 records.
inline List ListOf(decltype(GetTagdict)* list) {
  std::vector<TagdictData> records(1000);
  int32_t count = -1;
  EXPECT_EQ(list(records.data(), &count), 1);
  List texts;
  for (int32_t i = 0; i < count; ++i) texts.push_back(TextsOf(records[static_cast<size_t>(i)]));
  return texts;
}

// The low octets of a number, the lowest first.
inline std::string LittleEndian(std::uint64_t number, std::size_t octets) {
  std::string text;
  for (std::size_t i = 0; i < octets; ++i) text += static_cast<char>(number >> 8 * i & 0xFF);
  return text;
}

// As the dictionary writes it. Below 65,534 characters.
inline std::string FileText(const std::string& text) {
  const auto size = text.size();
  return (size < 255 ? LittleEndian(size, 1) : LittleEndian(size << 8 | 0xFF, 3)) + text;
}

// A whole file, as the dictionary writes it.
inline std::string FileImage(const List& records) {
  std::string image = LittleEndian(records.size(), 4);
  for (const Texts& texts : records) {
    for (const std::string& text : texts) image += FileText(text);
  }
  return image;
}

}  // namespace orvane_test
