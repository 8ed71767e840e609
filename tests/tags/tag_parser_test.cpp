#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "orvane.h"
#include "tags/slow_parser.h"

namespace {

constexpr std::size_t kRecord = sizeof(TagRecord);

struct Release {
  void operator()(TagParser* parser) const { TagParsing_Free(parser); }
};
using Parser = std::unique_ptr<TagParser, Release>;

Parser MakeParser() { return Parser(TagParsing_Init()); }

std::string Twice(std::size_t count) {
  std::string digits;
  for (std::size_t i = 0; i < count; ++i) digits += "A5";
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

using Tags = std::map<std::string, std::string>;

TEST(TagParser, KeepsWhatStandsBeforeTheFirstFault) {
  const struct {
    std::string text;
    int result;
    Tags tags;
  } rows[] = {
      {"5A0112", 1, {{"5A", "01:12"}}},
      {" 5 A 0 1 1 2 ", 1, {{"5A", "01:12"}}},
      {"5a02abCd", 1, {{"5A", "02:ABCD"}, {"5a", "02:ABCD"}}},
      {"5A00 57 01 FF", 1, {{"5A", "00:"}, {"57", "01:FF"}}},
      {"0000", 1, {{"00", "00:"}}},
      {"", 0, {}},
      {"   ", 0, {}},
      {"5A0112 5A01 1G", 0, {{"5A", "none"}}},
      {"5A0112\t", 0, {{"5A", "none"}}},
      {"5A01 1\xB2", 0, {{"5A", "none"}}},
      {"5A0112 5", 0, {{"5A", "01:12"}}},
      {"5A0112 57", 0, {{"5A", "01:12"}, {"57", "none"}}},
      {"5A0112 571", 0, {{"5A", "01:12"}, {"57", "none"}}},
      {"5A0212", 0, {{"5A", "none"}}},
      {"5A01 1", 0, {{"5A", "none"}}},
      {"5A0112 9F360200 01", 0, {{"5A", "01:12"}, {"9F36", "none"}, {"9F", "none"}}},
      {"FF00", 0, {{"FF", "none"}}},
      {"1F00", 0, {{"1F", "none"}}},
      // The long form.
      {"5A8101 12", 1, {{"5A", "81:12"}}},
      {"5A820001 12", 1, {{"5A", "82:12"}}},
      {"5A83000001 12", 1, {{"5A", "83:12"}}},
      {"5A8400000001 12", 1, {{"5A", "84:12"}}},
      {"5A8200 00 5701AA", 1, {{"5A", "82:"}, {"57", "01:AA"}}},
      {"5A850000000001 12", 0, {{"5A", "none"}}},
      {"5A80 12 0000", 0, {{"5A", "none"}}},
      {"5AFF 12", 0, {{"5A", "none"}}},
      {"5A82 00", 0, {{"5A", "none"}}},
      {"5A84 FFFFFFFF 12", 0, {{"5A", "none"}}},
      {"5A84 80000001 12", 0, {{"5A", "none"}}},
      // Constructed elements.
      {"70035A0112", 1, {{"70", "03:5A0112"}, {"5A", "01:12"}}},
      {"6F8105 A5035A0112 570134",
       1,
       {{"6F", "81:A5035A0112"}, {"A5", "03:5A0112"}, {"5A", "01:12"}, {"57", "01:34"}}},
      {"5A0112 7000 570134", 0, {{"5A", "01:12"}, {"70", "00:"}, {"57", "none"}}},
      {"70065A0112570234", 0, {{"70", "06:5A0112570234"}, {"5A", "01:12"}, {"57", "none"}}},
      {"7003 5A0212 570134", 0, {{"70", "03:5A0212"}, {"5A", "none"}, {"57", "none"}}},
      {"7004 A5025A01 0000", 0, {{"A5", "02:5A01"}, {"5A", "none"}, {"00", "none"}}},
      // The last one counts.
      {"5A0112 5A0134", 1, {{"5A", "01:34"}}},
      {"7003700134 00", 0, {{"70", "01:34"}}},
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

TEST(TagParser, TakesValuesAsLongAsARecord) {
  const struct {
    std::string head;
    std::size_t octets;
    int result;
  } rows[] = {{"5A7F", 127, 1},      {"5A817F", 127, 1},       {"5A82007F", 127, 1},
              {"5A81FF", 255, 1},    {"5A8203FF", 1023, 1},    {"5A84000003FF", 1023, 1},
              {"5A820400", 1024, 0}, {"5A8300FFFF", 0xFFFF, 0}};
  for (const auto& row : rows) {
    const Parser parser = MakeParser();
    const std::string value = Twice(row.octets);
    const std::string text = "570112" + row.head + value + "580134";
    EXPECT_EQ(TagParsing_Parse(parser.get(), text.c_str()), row.result) << row.head;
    EXPECT_EQ(Shown(Record(parser, "57")), "01:12");
    EXPECT_EQ(Shown(Record(parser, "5A")),
              row.result == 1 ? row.head.substr(2, 2) + ":" + value : "none");
    EXPECT_EQ(Shown(Record(parser, "58")), row.result == 1 ? "01:34" : "none");
  }
}

TEST(TagParser, AddsToWhatItKnows) {
  const Parser parser = MakeParser();
  EXPECT_EQ(TagParsing_Parse(parser.get(), "5A0112 570199"), 1);
  EXPECT_EQ(TagParsing_Parse(parser.get(), "5A 01 34"), 1);
  EXPECT_EQ(TagParsing_Parse(parser.get(), "5A 01 5G"), 0);
  EXPECT_EQ(TagParsing_Parse(parser.get(), "5802ABCD 57"), 0);
  EXPECT_EQ(Shown(Record(parser, "5A")), "01:34");
  EXPECT_EQ(Shown(Record(parser, "57")), "01:99");
  EXPECT_EQ(Shown(Record(parser, "58")), "02:ABCD");
  EXPECT_EQ(Shown(Record(MakeParser(), "5A")), "none");
}

TEST(TagParser, AnswersOddRequests) {
  const Parser parser = MakeParser();
  ASSERT_EQ(TagParsing_Parse(parser.get(), "5A0112 000134"), 1);
  for (const char* tag : {"", "5", "5A0", "5A ", " 5A", "G0", "5G", "0", "\xDA\xB0"}) {
    EXPECT_EQ(Shown(Record(parser, tag)), "none") << tag;
  }
  std::string out(kRecord, 'x');
  EXPECT_EQ(TagParsing_GetTag(nullptr, "5A", out.data()), 0);
  EXPECT_EQ(TagParsing_GetTag(parser.get(), nullptr, out.data()), 0);
  EXPECT_EQ(out, std::string(kRecord, 'x'));
  EXPECT_EQ(TagParsing_GetTag(parser.get(), "5A", nullptr), 0);
  EXPECT_EQ(TagParsing_Parse(nullptr, "5A0112"), 0);
  EXPECT_EQ(TagParsing_Parse(parser.get(), nullptr), 0);
  EXPECT_EQ(Shown(Record(parser, "5A")), "01:12");
  TagParsing_Free(nullptr);
}

/// As many levels as an even number of octets has room for, around an element 5A 00.
std::string Nested(unsigned octets) {
  std::string text;
  for (octets += 4; octets > 2;) {
    const unsigned head = octets - 2 < 0x80 ? 2 : octets - 4 < 0x10000 ? 4 : 6;
    const char* const format = head == 2 ? "70%02X" : head == 4 ? "7082%04X" : "7084%08X";
    octets -= head;
    char digits[13];
    std::snprintf(digits, sizeof digits, format, octets);
    text += digits;
  }
  return text + "5A00";
}

TEST(TagParser, GoesAsDeepAsAValueReaches) {
  const Parser parser = MakeParser();
  EXPECT_EQ(TagParsing_Parse(parser.get(), Nested(1022).c_str()), 1);
  EXPECT_EQ(Shown(Record(parser, "70")), "02:5A00");
  EXPECT_EQ(Shown(Record(parser, "5A")), "00:");

  // A mebibyte of levels is refused where it begins.
  EXPECT_EQ(TagParsing_Parse(MakeParser().get(), Nested(1U << 19U).c_str()), 0);
}

class RandomText {
 public:
  std::string Make() {
    std::string text;
    for (std::size_t count = Below(5) + 1; count > 0; --count) text += Element(Below(4));
    for (std::size_t faults = Below(3); faults > 0 && !text.empty(); --faults) Spoil(text);
    for (std::size_t blanks = Below(4); blanks > 0; --blanks) {
      text.insert(Below(text.size() + 1), Below(3), ' ');
    }
    return text;
  }

 private:
  std::size_t Below(std::size_t limit) { return random_() % limit; }

  std::string Octet(std::size_t value) {
    char digits[3];
    std::snprintf(digits, sizeof digits, Below(4) == 0 ? "%02x" : "%02X",
                  static_cast<unsigned>(value & 0xFF));
    return digits;
  }

  std::string Length(std::size_t octets) {
    const std::size_t form = Below(8);
    if (octets < 0x80 && form < 5) return Octet(octets);
    const std::size_t width = octets < 0x100 ? form % 4 + 1 : form % 3 + 2;
    std::string text = Octet(0x80 + width);
    for (std::size_t i = width; i-- > 0;) text += Octet(octets >> 8 * i);
    return text;
  }

  std::string Element(std::size_t levels) {
    std::size_t tag = Below(32) == 0 ? 0x1F : Below(31);
    std::string value;
    if (levels > 0 && Below(2) == 0) {
      tag |= 0x20;
      for (std::size_t count = Below(16) == 0 ? 0 : Below(4) + 1; count > 0; --count) {
        value += Element(levels - 1);
      }
    } else {
      const std::size_t octets = Below(16) == 0 ? Below(600) : Below(12);
      for (std::size_t i = 0; i < octets; ++i) value += Octet(random_());
    }
    return Octet(tag | Below(4) << 6U) + Length(value.size() / 2) + value;
  }

  void Spoil(std::string& text) {
    constexpr char kCharacters[] = "0123456789abcdefABCDEFgG:/@`\t\xFF";
    const std::size_t at = Below(text.size());
    switch (Below(5)) {
      case 0:
        text.erase(at);
        break;
      case 1:
        text.erase(at, 1);
        break;
      case 2:
        text.insert(at, 1, kCharacters[Below(22)]);
        break;
      case 3:
        text[at] = kCharacters[Below(22)];
        break;
      case 4:
        text[at] = kCharacters[Below(sizeof kCharacters - 1)];
        break;
    }
  }

  std::mt19937 random_{41};
};

TEST(TagParser, AgreesWithASlowParserOnAnyText) {
  RandomText texts;
  int passed = 0;
  constexpr int kTexts = 20000;
  constexpr int kTextsAParser = 50;
  for (int i = 0; i < kTexts / kTextsAParser; ++i) {
    const Parser parser = MakeParser();
    orvane_test::SlowParser slow;
    for (int j = 0; j < kTextsAParser; ++j) {
      const std::string text = texts.Make();
      const bool expected = slow.Parse(text);
      ASSERT_EQ(TagParsing_Parse(parser.get(), text.c_str()), expected ? 1 : 0) << text;
      passed += expected;
      if (j % 5 != 0) continue;
      for (unsigned tag = 0; tag < 256; ++tag) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02X", tag);
        const auto known = slow.records.find(digits);
        ASSERT_EQ(Record(parser, digits), known != slow.records.end() ? known->second : "")
            << digits << " after " << text;
      }
    }
  }
  // Both kinds of text have been there.
  EXPECT_GT(passed, kTexts / 10);
  EXPECT_LT(passed, kTexts - kTexts / 10);
}

}  // namespace
