#include <gtest/gtest.h>

#include "memory/failing_allocations.h"
#include "tags/dictionary.h"

namespace orvane_test {
namespace {

std::string ValueOf(TagParser* parser, const char* tag) {
  TagRecord record;
  TagParsing_GetTag(parser, tag, reinterpret_cast<char*>(&record));
  return {record.value, 3};
}

TEST(Memory, MissingMakesAParseFailWithNothingAdded) {
  EXPECT_EQ(RunWith(0, [] { return TagParsing_Init(); }), nullptr);
  TagParser* const parser = TagParsing_Init();
  ASSERT_EQ(TagParsing_Parse(parser, "5A0112"), 1);
  std::string text;
  for (int i = 0; i < 5000; ++i) text += "5A0134";
  text += "5A0156";
  const auto parse = [&] { return TagParsing_Parse(parser, text.c_str()); };
  EXPECT_EQ(RunWith(0, parse), 0);
  EXPECT_EQ(ValueOf(parser, "5A"), std::string("12\0", 3));
  // Where there is memory for the text, giving back what it leaves behind may fail.
  for (const int allocations : {1, 2}) {
    EXPECT_EQ(RunWith(allocations, parse), 1);
    EXPECT_EQ(ValueOf(parser, "5A"), std::string("56\0", 3));
  }
  TagParsing_Free(parser);
}

TEST(Memory, MissingMakesTheDictionaryFailWithNothingChanged) {
  const WorkingFolder folder;
  const List start = {{"5A", "1", ""}, {"57", "2", ""}, {"58", "3", ""}, {"59", "4", ""}};
  WriteFile(kDictionaryFile, FileImage(start));
  TagdictData area[8];
  int32_t count = -1;
  const auto load = [&] { return GetTagdict(area, &count); };
  EXPECT_GT(FailuresOf(load,
                       [&] {
                         EXPECT_EQ(count, -1);
                         EXPECT_EQ(RunWith(0, FlushTagdict), 1);
                         EXPECT_EQ(ReadFile(kDictionaryFile), FileImage(start));
                       }),
            0);
  List records = start;
  const auto unchanged = [&] { EXPECT_EQ(ListOf(GetTagdict), records); };
  unchanged();

  TagdictData record = MakeRecord({"5A", "5", ""});
  EXPECT_GT(FailuresOf([&] { return UpTagdictData(&record); }, unchanged), 0);
  EXPECT_EQ(RunWith(0, [] { return DeleteTagdictData("57"); }), 1);
  EXPECT_EQ(RunWith(0, [&] { return FindTagdictData("58", area); }), 1);
  records = {start[2], start[3], TextsOf(record)};
  record = MakeRecord({"60", "6", ""});
  EXPECT_GT(FailuresOf([&] { return AddTagdictData(&record); }, unchanged), 0);
  records.push_back(TextsOf(record));

  int allocations = 0;
  do {
    EXPECT_EQ(ReadFile(kDictionaryFile), FileImage(start)) << allocations;
    EXPECT_EQ(RunWith(allocations, FlushTagdict), 1);
  } while (ReadFile(kDictionaryFile) != FileImage(records) && ++allocations < 100);
  EXPECT_LT(allocations, 100);
  EXPECT_EQ(FilesIn("."), 1);
}

}  // namespace
}  // namespace orvane_test
