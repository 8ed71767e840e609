#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <memory>
#include <string>

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

// A whole record, from an area of just its size that held something else; empty if there is none.
std::string Record(const Parser& parser, const std::string& tag) {
  const auto out = std::make_unique<char[]>(kRecord);
  std::memset(out.get(), 'x', kRecord);
  if (TagParsing_GetTag(parser.get(), tag.c_str(), out.get()) == 1) return {out.get(), kRecord};
  EXPECT_EQ(std::string(out.get(), kRecord), std::string(kRecord, '\0')) << tag;
  return {};
}

// As the table's rows write it: the length text, a colon and the value.
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

}  // namespace
