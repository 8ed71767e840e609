#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/failing_allocations.h"
#include "tags/dictionary_process.h"

namespace orvane_test {
namespace {

using List = std::vector<Texts>;
using support::RunWith;

std::string ValueOf(TagParser* parser, const char* tag) {
  TagRecord record;
  TagParsing_GetTag(parser, tag, reinterpret_cast<char*>(&record));
  return {record.value, sizeof record.value};
}

TEST(NoMemory, MakesAParseFailWithNothingAdded) {
  EXPECT_EQ(RunWith(0, [] { return TagParsing_Init(); }), nullptr);
  TagParser* const parser = TagParsing_Init();
  ASSERT_EQ(TagParsing_Parse(parser, "5A0112"), 1);
  const std::string value = ValueOf(parser, "5A");
  std::string text;
  for (int i = 0; i < 5000; ++i) text += "5A0134";
  text += "5A0156";
  EXPECT_EQ(RunWith(0, [&] { return TagParsing_Parse(parser, text.c_str()); }), 0);
  EXPECT_EQ(ValueOf(parser, "5A"), value);
  // Where there is memory for the text, giving back what it leaves behind may fail.
  for (const int allocations : {1, 2}) {
    EXPECT_EQ(RunWith(allocations, [&] { return TagParsing_Parse(parser, text.c_str()); }), 1);
    EXPECT_EQ(ValueOf(parser, "5A").substr(0, 3), std::string("56\0", 3));
  }
  TagParsing_Free(parser);
}

/// The list of this process's own dictionary.
List Records() {
  std::vector<TagdictData> records(1000);
  int32_t count = 0;
  EXPECT_EQ(GetTagdict(records.data(), &count), 1);
  List texts;
  for (int32_t i = 0; i < count; ++i) texts.push_back(TextsOf(records[static_cast<size_t>(i)]));
  return texts;
}

/// Runs a call with ever more memory until it succeeds; checks after each failure.
template <typename Call, typename Check>
void ExpectAllOrNothing(const char* what, Call call, Check check) {
  int allocations = 0;
  while (RunWith(allocations, call) != 1) {
    check();
    ASSERT_LT(++allocations, 100) << what;
  }
  EXPECT_GT(allocations, 0) << what;
}

TEST(NoMemory, MakesTheDictionaryFailWithNothingChanged) {
  const WorkingFolder folder;
  const List start = {{"5A", "1", ""}, {"57", "2", ""}, {"58", "3", ""}, {"59", "4", ""}};
  WriteFile(kDictionaryFile, FileImage(start));
  TagdictData area[8];
  int32_t count = -1;
  ExpectAllOrNothing(
      "load", [&] { return GetTagdict(area, &count); },
      [&] {
        EXPECT_EQ(count, -1);
        EXPECT_EQ(RunWith(0, [] { return FlushTagdict(); }), 1);
        EXPECT_EQ(ReadFile(kDictionaryFile), FileImage(start));
      });
  EXPECT_EQ(Records(), start);

  const auto unchanged = [&] { EXPECT_EQ(Records(), start); };
  const TagdictData changed = MakeRecord({"5A", "5", ""});
  ExpectAllOrNothing(
      "update", [&] { return UpTagdictData(&changed); }, unchanged);
  List after(start.begin() + 1, start.end());
  after.push_back(TextsOf(changed));
  EXPECT_EQ(Records(), after);

  EXPECT_EQ(RunWith(0, [] { return DeleteTagdictData("57"); }), 1);
  EXPECT_EQ(RunWith(0, [&] { return FindTagdictData("58", area); }), 1);
  after.erase(after.begin());
  const TagdictData added = MakeRecord({"60", "6", ""});
  ExpectAllOrNothing(
      "add", [&] { return AddTagdictData(&added); }, [&] { EXPECT_EQ(Records(), after); });
  after.push_back(TextsOf(added));

  int allocations = 0;
  do {
    EXPECT_EQ(ReadFile(kDictionaryFile), FileImage(start)) << allocations;
    EXPECT_EQ(RunWith(allocations++, [] { return FlushTagdict(); }), 1);
  } while (ReadFile(kDictionaryFile) != FileImage(after) && allocations < 100);
  EXPECT_EQ(ReadFile(kDictionaryFile), FileImage(after));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator("."), {}), 1);
}

}  // namespace
}  // namespace orvane_test
