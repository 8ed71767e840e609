#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "tags/dictionary_process.h"

namespace orvane_test {
namespace {

using List = std::vector<Texts>;

std::string operator""_octets(const char* text, std::size_t size) { return {text, size}; }

class TagDictionary : public testing::Test {
 protected:
  WorkingFolder folder;
};

TEST_F(TagDictionary, ReadsAnyFile) {
  const std::string first = FileText("5A") + FileText("ABC") + FileText("");
  const std::string second = FileText("57") + FileText("") + FileText("x");
  const std::string end = FileText("") + FileText("");  // the texts behind a tag
  const Texts abc{"5A", "ABC", ""};
  std::string wide;
  for (int i = 0; i < 1024; ++i) wide += "t\0"_octets;
  const auto count = [](std::uint64_t records) { return LittleEndian(records, 4); };
  const struct {
    const char* what;
    std::string file;
    List records;
  } rows[] = {
      {"one record", "\x01\0\0\0\x02\x35\x41\x03\x41\x42\x43\0"_octets, {abc}},
      {"none", count(0), {}},
      {"none, octets behind", count(0) + first, {}},
      {"octets behind the last record", count(1) + first + second, {abc}},
      {"a negative count", count(0xFFFFFFFF) + first, {}},
      {"the lowest count", count(0x80000000) + first, {}},
      {"an empty file", "", {}},
      {"a cut count", "\x01\0\0"_octets, {}},
      {"a count alone", count(1), {}},
      {"a record that is cut by one octet",
       count(2) + first + second.substr(0, second.size() - 1),
       {abc}},
      {"a cut length", count(2) + first + FileText("57") + "\xFF\x10", {abc}},
      {"two thousand million records", count(2000000000) + first, {abc}},
      {"a length in 16 bits", count(1) + "\xFF\x02\0"_octets + "5A" + end, {{"5A", "", ""}}},
      {"a length in 32 bits",
       count(1) + "\xFF\xFF\xFF\x02\0\0\0"_octets + "5A" + end,
       {{"5A", "", ""}}},
      {"a length in 64 bits",
       count(1) + std::string(7, '\xFF') + LittleEndian(2, 8) + "5A" + end,
       {{"5A", "", ""}}},
      {"a length past the end",
       count(2) + first + std::string(7, '\xFF') + LittleEndian(~0ULL, 8) + "5A" + end,
       {abc}},
      {"a zero in a text", count(1) + FileText("5A\0B"_octets) + end, {{"5A", "", ""}}},
      {"a tag that is too long",
       count(2) + FileText(std::string(20, 'T')) + end + first,
       {{std::string(19, 'T'), "", ""}, abc}},
      {"texts that are too long",
       count(2) + FileText("5B") + FileText(std::string(200, 's')) +
           FileText(std::string(40000, 'l')) + first,
       {{"5B", std::string(199, 's'), std::string(1023, 'l')}, abc}},
      {"a wide text", count(1) + "\xFF\xFE\xFF\x02\x35\0\x41\0"_octets + end, {{"5A", "", ""}}},
      {"a wide text that is too long",
       count(2) + "\xFF\xFE\xFF\xFF\0\4"_octets + wide + end + first,
       {{std::string(19, 't'), "", ""}, abc}},
      {"a wide text's length in 64 bits",
       count(1) + "\xFF\xFE\xFF" + std::string(7, '\xFF') + LittleEndian(1, 8) + "5\0"_octets + end,
       {{"5", "", ""}}},
      {"a wide text past the end",
       count(2) + first + "\xFF\xFE\xFF" + std::string(7, '\xFF') +
           LittleEndian(0x8000000000000000, 8) + "5\0"_octets + end,
       {abc}},
      {"a wide zero", count(1) + "\xFF\xFE\xFF\x03\x35\0\0\0\x41\0"_octets + end, {{"5", "", ""}}},
  };
  for (const auto& row : rows) {
    WriteFile(kDictionaryFile, row.file);
    const DictionaryProcess process;
    const List records = process.List();
    EXPECT_EQ(records, row.records) << row.what;
    // A second look finds the same.
    EXPECT_EQ(process.List(), records) << row.what;
    EXPECT_EQ(process.Flush(), 1);
    EXPECT_EQ(ReadFile(kDictionaryFile), FileImage(records)) << row.what;
  }
}

TEST_F(TagDictionary, WritesTheFileByteByByte) {
  const DictionaryProcess empty;
  EXPECT_EQ(empty.List(), List{});
  EXPECT_FALSE(ReadFile(kDictionaryFile));
  EXPECT_EQ(empty.Flush(), 1);
  EXPECT_EQ(ReadFile(kDictionaryFile), "\0\0\0\0"_octets);

  EXPECT_EQ(empty.Add(Texts{"5A", "ABC", ""}), 1);
  EXPECT_EQ(ReadFile(kDictionaryFile), "\0\0\0\0"_octets);
  EXPECT_EQ(empty.Flush(), 1);
  EXPECT_EQ(ReadFile(kDictionaryFile), "\x01\0\0\0\x02\x35\x41\x03\x41\x42\x43\0"_octets);
  EXPECT_EQ(empty.Delete("5A"), 1);
  EXPECT_EQ(empty.Flush(), 1);
  EXPECT_EQ(ReadFile(kDictionaryFile), "\0\0\0\0"_octets);

  EXPECT_EQ(empty.Add(Texts{"", std::string(199, 's'), std::string(254, 'l')}), 1);
  EXPECT_EQ(empty.Add(Texts{std::string(19, 'T'), "", std::string(255, 'l')}), 1);
  EXPECT_EQ(empty.Add(Texts{"5A", "", std::string(1023, 'l')}), 1);
  const List records = empty.List();
  EXPECT_EQ(empty.Flush(), 1);
  EXPECT_EQ(ReadFile(kDictionaryFile),
            "\x03\0\0\0\0\xC7"_octets + std::string(199, 's') + '\xFE' + std::string(254, 'l') +
                '\x13' + std::string(19, 'T') + "\0\xFF\xFF\0"_octets + std::string(255, 'l') +
                "\x02\x35\x41\0\xFF\xFF\x03"_octets + std::string(1023, 'l'));
  EXPECT_EQ(DictionaryProcess().List(), records);
  // No other file has been left.
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator("."), {}), 1);
}

TEST_F(TagDictionary, RewritesTheFileWhenFlushComesFirst) {
  const std::string image = FileImage({{"5A", "a", "b"}, {"", "", ""}, {"5A", "again", ""}});
  WriteFile(kDictionaryFile, image);
  EXPECT_EQ(DictionaryProcess().Flush(), 1);
  EXPECT_EQ(ReadFile(kDictionaryFile), image);
}

TEST_F(TagDictionary, ReadsTheFileOnceAndWhenItIsThere) {
  const DictionaryProcess process;
  EXPECT_EQ(process.Add(Texts{"5A", "own", ""}), 1);
  WriteFile(kDictionaryFile, FileImage({{"57", "file", ""}}));
  EXPECT_EQ(process.List(), (List{{"5A", "own", ""}, {"57", "file", ""}}));
  WriteFile(kDictionaryFile, FileImage({{"58", "", ""}}));
  EXPECT_EQ(process.List().size(), 2U);
  EXPECT_EQ(process.Flush(), 1);
  EXPECT_EQ(ReadFile(kDictionaryFile), FileImage({{"5A", "own", ""}, {"57", "file", ""}}));

  // What was flushed is not read again.
  std::filesystem::remove(kDictionaryFile);
  const DictionaryProcess second;
  EXPECT_EQ(second.Add(Texts{"5A", "", ""}), 1);
  EXPECT_EQ(second.Flush(), 1);
  EXPECT_EQ(second.List(), (List{{"5A", "", ""}}));
  EXPECT_EQ(second.Flush(), 1);
  EXPECT_EQ(ReadFile(kDictionaryFile), FileImage({{"5A", "", ""}}));
}

TEST_F(TagDictionary, LooksInTheDirectoryOfTheCall) {
  const DictionaryProcess process;
  EXPECT_EQ(process.List(), List{});
  {
    const WorkingFolder other;
    WriteFile(kDictionaryFile, FileImage({{"5A", "", ""}}));
    EXPECT_EQ(process.List(), (List{{"5A", "", ""}}));
  }
  EXPECT_EQ(process.Flush(), 1);
  EXPECT_EQ(ReadFile(kDictionaryFile), FileImage({{"5A", "", ""}}));
}

TEST_F(TagDictionary, HandsBackTheWholeRecord) {
  const DictionaryProcess process;
  TagdictData record;
  std::memset(&record, 'x', sizeof record);
  std::strcpy(record.tag, "5a");
  std::strcpy(record.shortText, "short");
  std::strcpy(record.longText, "long");
  ASSERT_EQ(process.Add(record), 1);
  TagdictData found{};
  ASSERT_EQ(process.Find("5A", found), 1);
  EXPECT_EQ(std::memcmp(&found, &record, sizeof record), 0);

  // Fields without a terminator are cut.
  std::memset(&record, 'y', sizeof record);
  const Texts cut{std::string(19, 'y'), std::string(199, 'y'), std::string(1023, 'y')};
  EXPECT_EQ(process.Add(record), 1);
  EXPECT_EQ(process.Add(record), 0);
  EXPECT_EQ(process.List().back(), cut);
  EXPECT_EQ(process.Find(std::string(20, 'y'), found), 0);
  EXPECT_EQ(process.Find(std::string(19, 'Y'), found), 1);
  EXPECT_EQ(process.Delete(std::string(20, 'y')), 0);
  EXPECT_EQ(process.Update(record), 1);
  EXPECT_EQ(process.List().size(), 2U);
  EXPECT_EQ(process.Delete(std::string(19, 'y')), 1);

  // What is not found is not written.
  std::memset(&found, 'z', sizeof found);
  EXPECT_EQ(process.Find("57", found), 0);
  EXPECT_EQ(found.tag[0], 'z');
  EXPECT_EQ(found.longText[1023], 'z');
}

TEST_F(TagDictionary, TellsCaseApartOnlyWhenDeleting) {
  const DictionaryProcess process;
  EXPECT_EQ(process.Add(Texts{"5A", "1", ""}), 1);
  EXPECT_EQ(process.Add(Texts{"57", "2", ""}), 1);
  EXPECT_EQ(process.Add(Texts{"", "3", ""}), 1);
  EXPECT_EQ(process.Add(Texts{"5a", "4", ""}), 0);
  EXPECT_EQ(process.Delete("5a"), 0);
  EXPECT_EQ(process.Update(Texts{"5a", "5", ""}), 0);
  EXPECT_EQ(process.List(), (List{{"5A", "1", ""}, {"57", "2", ""}, {"", "3", ""}}));
  EXPECT_EQ(process.Update(Texts{"5A", "6", ""}), 1);
  EXPECT_EQ(process.Update(Texts{"58", "7", ""}), 1);
  EXPECT_EQ(process.List(),
            (List{{"57", "2", ""}, {"", "3", ""}, {"5A", "6", ""}, {"58", "7", ""}}));
  EXPECT_EQ(process.Delete(""), 1);
  EXPECT_EQ(process.Delete(""), 0);
  EXPECT_EQ(process.List(), (List{{"57", "2", ""}, {"5A", "6", ""}, {"58", "7", ""}}));
  // Letters outside ASCII have one case.
  EXPECT_EQ(process.Add(Texts{"\xC3\xA4", "", ""}), 1);
  EXPECT_EQ(process.Add(Texts{"\xC3\x84", "", ""}), 1);
}

/// The operations on a plain list.
class Model {
 public:
  explicit Model(List records) : records_(std::move(records)) {}
  const List& Records() const { return records_; }

  List::const_iterator Find(const std::string& tag) const {
    return std::find_if(records_.begin(), records_.end(),
                        [&](const Texts& record) { return Upper(record.tag) == Upper(tag); });
  }
  int Add(const Texts& texts) {
    if (Find(texts.tag) != records_.end()) return 0;
    records_.push_back(texts);
    return 1;
  }
  int Delete(const std::string& tag) {
    const auto found = std::find_if(records_.begin(), records_.end(),
                                    [&](const Texts& record) { return record.tag == tag; });
    if (found == records_.end()) return 0;
    records_.erase(found);
    return 1;
  }
  int Update(const Texts& texts) {
    if (Find(texts.tag) != records_.end()) Delete(texts.tag);
    return Add(texts);
  }

 private:
  static std::string Upper(std::string text) {
    for (char& c : text) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
    return text;
  }
  List records_;
};

TEST_F(TagDictionary, BehavesLikeAPlainList) {
  // Tags that differ in case alone can only come from a file.
  const List start = {{"5a", "1", ""}, {"5A", "2", ""}, {"5A", "3", ""}, {"9f36", "", "4"}};
  WriteFile(kDictionaryFile, FileImage(start));
  const DictionaryProcess process;
  Model model(start);
  std::mt19937 random(42);
  const std::vector<std::string> tags = {"",    "5A",    "5a", "9F36", "9f36",
                                         "9F3", "9F361", "zZ", "ZZ"};
  for (int step = 0; step < 3000; ++step) {
    const Texts texts{tags[random() % tags.size()], std::to_string(step), ""};
    switch (random() % 4) {
      case 0: {
        TagdictData found{};
        const auto known = model.Find(texts.tag);
        const bool isKnown = known != model.Records().end();
        ASSERT_EQ(process.Find(texts.tag, found), isKnown ? 1 : 0);
        ASSERT_EQ(TextsOf(found), isKnown ? *known : Texts{});
        break;
      }
      case 1:
        ASSERT_EQ(process.Add(texts), model.Add(texts)) << texts;
        break;
      case 2:
        ASSERT_EQ(process.Delete(texts.tag), model.Delete(texts.tag)) << texts;
        break;
      case 3:
        ASSERT_EQ(process.Update(texts), model.Update(texts)) << texts;
        break;
    }
    ASSERT_EQ(process.List(), model.Records()) << step;
  }
}

}  // namespace
}  // namespace orvane_test
