#include <gtest/gtest.h>

#include <cctype>
#include <cstring>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <string_view>

#include "orvane.h"

namespace {

constexpr std::size_t kRecord = sizeof(TagRecord);

struct Release {
  void operator()(TagParser* parser) const { TagParsing_Free(parser); }
};
using Parser = std::unique_ptr<TagParser, Release>;

Parser MakeParser() { return Parser(TagParsing_Init()); }

std::string Hex(int width, std::size_t number) {
  char digits[9];
  std::snprintf(digits, sizeof digits, "%0*X", width, static_cast<unsigned>(number));
  return digits;
}

/// A whole record, from an area of just its size that held something else; empty if there is none.
std::string Record(const Parser& parser, const std::string& tag) {
  const auto out = std::make_unique<char[]>(kRecord);
  std::memset(out.get(), 'x', kRecord);
  if (TagParsing_GetTag(parser.get(), tag.c_str(), out.get()) == 1) return {out.get(), kRecord};
  EXPECT_EQ(std::string(out.get(), kRecord), std::string(kRecord, '\0')) << tag;
  return {};
}

/// As the table's rows write it: the length text, a colon and the value.
std::string Shown(const std::string& record) {
  if (record.empty()) return "none";
  return std::string(record.c_str()) + ":" + record.substr(4, record.find('\0', 4) - 4);
}

TEST(TagParser, KeepsWhatStandsBeforeTheFirstFault) {
  const auto octets = [](std::size_t count) { return std::string(2 * count, 'A'); };
  const struct {
    std::string text;
    int result;
    std::map<std::string, std::string> tags;
  } rows[] = {
      {" 5 A 0 1 1 2 ", 1, {{"5A", "01:12"}}},
      {"5a02abCd", 1, {{"5A", "02:ABCD"}, {"5a", "02:ABCD"}}},
      {"5A00 57 01 FF", 1, {{"5A", "00:"}, {"57", "01:FF"}}},
      {"", 0, {}},
      {"   ", 0, {}},
      {"5A0112 5A01 1G", 0, {{"5A", "none"}}},
      {"5A0112\t", 0, {{"5A", "none"}}},
      {"5A0112 57", 0, {{"5A", "01:12"}, {"57", "none"}}},
      {"5A01 1", 0, {{"5A", "none"}}},
      {"5A0112 9F360200 01", 0, {{"5A", "01:12"}, {"9F36", "none"}, {"9F", "none"}}},
      // The long form.
      {"5A8200 00 5701AA", 1, {{"5A", "82:"}, {"57", "01:AA"}}},
      {"5A850000000001 12", 0, {{"5A", "none"}}},
      {"5A80 12 0000", 0, {{"5A", "none"}}},
      {"5A82 00", 0, {{"5A", "none"}}},
      {"5A84 FFFFFFFF 12", 0, {{"5A", "none"}}},
      // As long as a record's value, and longer.
      {"5A81FF" + octets(255), 1, {{"5A", "81:" + octets(255)}}},
      {"5A84000003FF" + octets(1023) + "5700", 1, {{"5A", "84:" + octets(1023)}, {"57", "00:"}}},
      {"570112 5A820400" + octets(1024), 0, {{"57", "01:12"}, {"5A", "none"}}},
      // Constructed elements.
      {"6F8105 A5035A0112 570134",
       1,
       {{"6F", "81:A5035A0112"}, {"A5", "03:5A0112"}, {"5A", "01:12"}, {"57", "01:34"}}},
      {"5A0112 7000 570134", 0, {{"5A", "01:12"}, {"70", "00:"}, {"57", "none"}}},
      {"7003 5A0212 570134", 0, {{"70", "03:5A0212"}, {"5A", "none"}, {"57", "none"}}},
      // The last one counts.
      {"5A0112 5A0134", 1, {{"5A", "01:34"}}},
      {"7007 7005 5A03112233", 1, {{"70", "05:5A03112233"}, {"5A", "03:112233"}}},
  };
  for (const auto& row : rows) {
    const Parser parser = MakeParser();
    EXPECT_EQ(TagParsing_Parse(parser.get(), row.text.c_str()), row.result) << row.text;
    for (const auto& [tag, shown] : row.tags) {
      EXPECT_EQ(Shown(Record(parser, tag)), shown) << tag << " in " << row.text;
    }
  }
}

TEST(TagParser, AnswersOddRequests) {
  const Parser parser = MakeParser();
  ASSERT_EQ(TagParsing_Parse(parser.get(), "5A0112 000134"), 1);
  for (const char* tag : {"", "5", "5A0", "5A ", " 5A", "G0", "5G", "\xDA\xB0"}) {
    EXPECT_EQ(Shown(Record(parser, tag)), "none") << tag;
  }
  std::string out(kRecord, 'x');
  EXPECT_EQ(TagParsing_GetTag(nullptr, "5A", out.data()), 0);
  EXPECT_EQ(TagParsing_GetTag(parser.get(), nullptr, out.data()), 0);
  EXPECT_EQ(out, std::string(kRecord, 'x'));
  EXPECT_EQ(TagParsing_GetTag(parser.get(), "5A", nullptr), 0);
  EXPECT_EQ(TagParsing_Parse(nullptr, "5A0112"), 0);
  EXPECT_EQ(TagParsing_Parse(parser.get(), nullptr), 0);
  TagParsing_Free(nullptr);
}

TEST(TagParser, GoesAsDeepAsAValueReaches) {
  std::string text = "5A00";
  while (text.size() < sizeof TagRecord::value) {
    const std::size_t octets = text.size() / 2;
    text = (octets < 0x80    ? "70"
            : octets < 0x100 ? "7081"
                             : "7082") +
           Hex(octets < 0x100 ? 2 : 4, octets) + text;
  }
  const Parser parser = MakeParser();
  EXPECT_EQ(TagParsing_Parse(parser.get(), text.c_str()), 1);
  EXPECT_EQ(Shown(Record(parser, "70")), "02:5A00");
  EXPECT_EQ(Shown(Record(parser, "5A")), "00:");
}

TEST(TagParser, ReadsAnyLength) {
  std::string text;
  for (std::size_t i = 0; text.size() < 1 << 20; ++i) {
    text += Hex(2, 0x80 + i % 0x1F) + "02" + Hex(4, i % 0x10000);
  }
  const Parser parser = MakeParser();
  EXPECT_EQ(TagParsing_Parse(parser.get(), text.c_str()), 1);
  const std::string last = text.substr(text.size() - 8);
  EXPECT_EQ(Shown(Record(parser, last.substr(0, 2))), "02:" + last.substr(4));
  EXPECT_EQ(TagParsing_Parse(parser.get(), (text + "5A02").c_str()), 0);
}

class RandomText {
 public:
  std::string Make() {
    std::string text;
    for (std::size_t i = Below(5) + 1; i > 0; --i) text += Element(Below(4));
    for (std::size_t faults = Below(3); faults > 0; --faults) Spoil(text);
    for (std::size_t i = Below(4); i > 0; --i) text.insert(Below(text.size() + 1), Below(3), ' ');
    return text;
  }

 private:
  std::size_t Below(std::size_t limit) { return random_() % limit; }

  std::string Element(std::size_t levels) {
    const bool isConstructed = levels > 0 && Below(2) == 0;
    std::string value;
    if (isConstructed) {
      for (std::size_t i = Below(16) % 5; i > 0; --i) value += Element(levels - 1);
    } else {
      for (std::size_t i = Below(Below(16) == 0 ? 600 : 12); i > 0; --i)
        value += Hex(2, Below(256));
    }
    const std::size_t octets = value.size() / 2, tag = Below(256) & 0xDF;
    const std::size_t width = (octets < 0x100 ? Below(4) + 1 : Below(3) + 2);
    const bool isShort = octets < 0x80 && Below(2) == 0;
    return Hex(2, isConstructed ? tag | 0x20 : tag) +
           (isShort ? Hex(2, octets)
                    : Hex(2, 0x80 + width) + Hex(2 * static_cast<int>(width), octets)) +
           value;
  }

  /// Cuts the text, or takes away, puts in or changes a character.
  void Spoil(std::string& text) {
    constexpr std::string_view kCharacters = "0123456789abcdefABCDEFgG:/@`\t\xFF";
    const char character = kCharacters[Below(Below(4) == 0 ? kCharacters.size() : 22)];
    const std::size_t removed = Below(4) == 0 ? text.npos : Below(2);
    text.replace(Below(text.size() + 1), removed, Below(2), character);
  }

  std::mt19937 random_{41};
};

using Records = std::map<std::string, std::string>;

/// Parses in the plainest way, level by level on copies of the text.
bool ParseSlowly(std::string text, Records& records) {
  const auto number = [](const std::string& digits) { return std::stoull(digits, nullptr, 16); };
  std::erase(text, ' ');
  if (text.empty()) return false;
  for (char& c : text) {
    if (!std::isxdigit(static_cast<unsigned char>(c))) return false;
    c = static_cast<char>(std::toupper(c));
  }
  while (!text.empty()) {
    if (text.size() < 4) return false;
    const std::string tag = text.substr(0, 2), lengthText = text.substr(2, 2);
    if ((number(tag) & 0x1F) == 0x1F) return false;
    text.erase(0, 4);
    std::size_t length = number(lengthText);
    if (length >= 0x80) {
      const std::size_t digits = 2 * (length & 0x7F);
      if (digits == 0 || digits > 8 || digits > text.size()) return false;
      length = number(text.substr(0, digits));
      text.erase(0, digits);
    }
    if (2 * length > text.size() || 2 * length > 2046) return false;
    const std::string value = text.substr(0, 2 * length);
    text.erase(0, value.size());
    records[tag] = lengthText + std::string(2, '\0') + value;
    records[tag].resize(kRecord, '\0');
    if ((number(tag) & 0x20) != 0 && !ParseSlowly(value, records)) return false;
  }
  return true;
}

TEST(TagParser, AgreesWithASlowParserOnAnyText) {
  RandomText texts;
  int passed = 0;
  constexpr int kTexts = 20000;
  constexpr int kTextsAParser = 50;
  Parser parser;
  Records records;
  for (int i = 0; i < kTexts; ++i) {
    if (i % kTextsAParser == 0) {
      parser = MakeParser();
      records.clear();
    }
    const std::string text = texts.Make();
    const bool expected = ParseSlowly(text, records);
    ASSERT_EQ(TagParsing_Parse(parser.get(), text.c_str()), expected ? 1 : 0) << text;
    passed += expected;
    for (std::size_t tag = 0; tag < 256 && i % 5 == 0; ++tag) {
      const std::string digits = Hex(2, tag);
      const auto known = records.find(digits);
      ASSERT_EQ(Record(parser, digits), known != records.end() ? known->second : "")
          << digits << " after " << text;
    }
  }
  // Both kinds of text have been there.
  EXPECT_GT(passed, kTexts / 10);
  EXPECT_LT(passed, kTexts - kTexts / 10);
}

}  // namespace
