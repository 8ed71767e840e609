#include <gtest/gtest.h>

#include <cstring>

#include "support/library_copy.h"
#include "tags/dictionary.h"

namespace orvane_test {
namespace {

// A dictionary that no call has touched yet, as a process has it that has just begun.
class DictionaryProcess {
 public:
  List Records() const { return ListOf(EXPORT_OF(module_, GetTagdict)); }
  int Find(const std::string& tag, TagdictData& out) const {
    return EXPORT_OF(module_, FindTagdictData)(tag.c_str(), &out);
  }
  int Delete(const std::string& tag) const {
    return EXPORT_OF(module_, DeleteTagdictData)(tag.c_str());
  }
  int Add(const TagdictData& record) const { return EXPORT_OF(module_, AddTagdictData)(&record); }
  int Update(const TagdictData& record) const { return EXPORT_OF(module_, UpTagdictData)(&record); }
  int Flush() const { return EXPORT_OF(module_, FlushTagdict)(); }

 private:
  void* const module_ = LoadLibraryCopy();
};

std::string operator""_octets(const char* text, std::size_t size) { return {text, size}; }

class TagDictionary : public testing::Test {
 protected:
  WorkingFolder folder;
};

TEST_F(TagDictionary, ReadsAnyFile) {
  const List none, abc = {{"5A", "ABC", ""}}, bare = {{"5A", "", ""}};
  const std::string first = FileText("5A") + FileText("ABC") + FileText("");
  const std::string second = FileText("57") + FileText("") + FileText("x");
  const std::string end = FileText("") + FileText("");  // the texts behind a tag
  const std::string longer = std::string(7, '\xFF');    // before a length in 64 bits
  const std::string wide = "\xFF\xFE\xFF";
  std::string wideText;
  for (int i = 0; i < 1024; ++i) wideText += "t\0"_octets;
  // A face, and how many bytes it has in the system's code page is the system's matter.
  const std::string pair = "\x3D\xD8\x00\xDE"_octets;
  std::string pairs, face(8, '\0'), faces;
  UTF_82ASCII("\xF0\x9F\x98\x80", face.data());
  face.resize(face.find('\0'));
  for (int i = 0; i < 25; ++i) pairs += pair, faces += face;
  const auto count = [](std::uint64_t records) { return LittleEndian(records, 4); };
  const struct {
    const char* what;
    std::string file;
    List records;
  } rows[] = {
      {"one record", "\x01\0\0\0\x02\x35\x41\x03\x41\x42\x43\0"_octets, abc},
      {"octets behind the last record", count(1) + first + second, abc},
      {"the highest negative count", count(0xFFFFFFFF) + first, none},
      {"an empty file", "", none},
      {"a cut record", count(2) + first + second.substr(0, second.size() - 1), abc},
      {"a cut length", count(2) + first + FileText("57") + "\xFF\x10", abc},
      {"two thousand million records", count(2000000000) + first, abc},
      {"16 bits", count(1) + "\xFF\x02\0"_octets + "5A" + end, bare},
      {"32 bits", count(1) + "\xFF\xFF\xFF\x02\0\0\0"_octets + "5A" + end, bare},
      {"64 bits", count(1) + longer + LittleEndian(2, 8) + "5A" + end, bare},
      {"past the end", count(2) + first + longer + LittleEndian(~0ULL, 8) + "5A" + end, abc},
      {"a zero in a text", count(1) + FileText("5A\0B"_octets) + end, bare},
      {"texts that are too long",
       count(2) + FileText(std::string(20, 'T')) + FileText(std::string(200, 's')) +
           FileText(std::string(40000, 'l')) + first,
       {{std::string(19, 'T'), std::string(199, 's'), std::string(1023, 'l')}, abc[0]}},
      {"a wide text", count(1) + wide + "\x02\x35\0\x41\0"_octets + end, bare},
      {"a wide text that is too long",
       count(2) + wide + "\xFF\0\4"_octets + wideText + end + first,
       {{std::string(19, 't'), "", ""}, abc[0]}},
      {"wide, 64 bits", count(1) + wide + longer + LittleEndian(2, 8) + "5\0A\0"_octets + end,
       bare},
      {"wide, past the end",
       count(2) + first + wide + longer + LittleEndian(1ULL << 63U, 8) + "5\0"_octets + end, abc},
      {"wide, a pair", count(1) + wide + "\x02"_octets + pair + end, {{face, "", ""}}},
      {"wide, pairs that are too long",
       count(2) + wide + "\x32"_octets + pairs + end + first,
       {{faces.substr(0, 19), "", ""}, abc[0]}},
      {"wide, half a pair", count(1) + wide + "\x02\x3D\xD8\x41\0"_octets + end, {{"?A", "", ""}}},
      {"a wide zero", count(1) + wide + "\x04\x35\0\x41\0\0\0\x42\0"_octets + end, bare},
  };
  for (const auto& row : rows) {
    WriteFile(kDictionaryFile, row.file);
    const DictionaryProcess process;
    EXPECT_EQ(process.Flush(), 1);
    EXPECT_EQ(ReadFile(kDictionaryFile), FileImage(row.records)) << row.what;
    EXPECT_EQ(process.Records(), row.records) << row.what;
  }
}

TEST_F(TagDictionary, WritesTheFileByteByByte) {
  const DictionaryProcess empty;
  EXPECT_EQ(empty.Records(), List{});
  EXPECT_FALSE(ReadFile(kDictionaryFile));
  EXPECT_EQ(empty.Flush(), 1);
  EXPECT_EQ(ReadFile(kDictionaryFile), "\0\0\0\0"_octets);

  EXPECT_EQ(empty.Add(MakeRecord({"5A", "ABC", ""})), 1);
  EXPECT_EQ(ReadFile(kDictionaryFile), "\0\0\0\0"_octets);
  EXPECT_EQ(empty.Flush(), 1);
  EXPECT_EQ(ReadFile(kDictionaryFile), "\x01\0\0\0\x02\x35\x41\x03\x41\x42\x43\0"_octets);

  EXPECT_EQ(empty.Delete("5A"), 1);
  EXPECT_EQ(empty.Add(MakeRecord({"", std::string(199, 's'), std::string(254, 'l')})), 1);
  EXPECT_EQ(empty.Add(MakeRecord({std::string(19, 'T'), "", std::string(255, 'l')})), 1);
  EXPECT_EQ(empty.Add(MakeRecord({"5A", "", std::string(1023, 'l')})), 1);
  EXPECT_EQ(empty.Flush(), 1);
  EXPECT_EQ(ReadFile(kDictionaryFile),
            "\x03\0\0\0\0\xC7"_octets + std::string(199, 's') + '\xFE' + std::string(254, 'l') +
                '\x13' + std::string(19, 'T') + "\0\xFF\xFF\0"_octets + std::string(255, 'l') +
                "\x02\x35\x41\0\xFF\xFF\x03"_octets + std::string(1023, 'l'));
  EXPECT_EQ(DictionaryProcess().Records(), empty.Records());
  EXPECT_EQ(FilesIn("."), 1);
}

TEST_F(TagDictionary, ReadsOneFileOnceInTheDirectoryOfTheCall) {
  const List file = {{"57", "file", ""}}, own = {{"5A", "own", ""}};
  const DictionaryProcess process;
  EXPECT_EQ(process.Add(MakeRecord(own[0])), 1);
  {
    const WorkingFolder other;
    WriteFile(kDictionaryFile, FileImage(file));
    EXPECT_EQ(process.Records(), (List{own[0], file[0]}));
  }
  WriteFile(kDictionaryFile, FileImage({{"58", "", ""}}));
  EXPECT_EQ(process.Records().size(), 2U);
  EXPECT_EQ(process.Flush(), 1);
  EXPECT_EQ(ReadFile(kDictionaryFile), FileImage({own[0], file[0]}));

  // What was flushed is not read again.
  std::filesystem::remove(kDictionaryFile);
  const DictionaryProcess second;
  EXPECT_EQ(second.Add(MakeRecord(own[0])), 1);
  EXPECT_EQ(second.Flush(), 1);
  EXPECT_EQ(second.Records(), own);
}

TEST_F(TagDictionary, HandsBackTheWholeRecord) {
  const DictionaryProcess process;
  TagdictData record, found{};
  std::memset(&record, 'x', sizeof record);
  std::strcpy(record.tag, "5a");
  std::strcpy(record.shortText, "short");
  std::strcpy(record.longText, "long");
  ASSERT_EQ(process.Add(record), 1);
  ASSERT_EQ(process.Find("5A", found), 1);
  EXPECT_EQ(std::memcmp(&found, &record, sizeof record), 0);

  // Fields without a terminator are cut.
  std::memset(&record, 'y', sizeof record);
  const Texts cut{std::string(19, 'y'), std::string(199, 'y'), std::string(1023, 'y')};
  EXPECT_EQ(process.Add(record), 1);
  EXPECT_EQ(process.Add(record), 0);
  EXPECT_EQ(process.Update(record), 1);
  EXPECT_EQ(process.Records(), (List{{"5a", "short", "long"}, cut}));
  EXPECT_EQ(process.Find(std::string(20, 'y'), found), 0);
  EXPECT_EQ(process.Delete(std::string(20, 'y')), 0);
  EXPECT_EQ(std::memcmp(&found, "5a", 3), 0) << "what is not found is not written";
  EXPECT_EQ(process.Find(std::string(19, 'Y'), found), 1);
  EXPECT_EQ(process.Delete(std::string(19, 'y')), 1);
}

TEST_F(TagDictionary, TakesOneTagInAnyCase) {
  // Tags that differ in case alone can only come from a file.
  WriteFile(kDictionaryFile, FileImage({{"5a", "1", ""}, {"5A", "2", ""}, {"5A", "3", ""}}));
  const DictionaryProcess process;
  const struct {
    char operation;  // Add, Delete, Update, Find
    std::string tag;
    int done;
    std::string shortTexts;  // of all records afterwards
  } steps[] = {{'F', "5A", 1, "123"},  {'A', "5a", 0, "123"},        {'D', "5A", 1, "13"},
               {'U', "5a", 0, "3"},    {'U', "5A", 1, "n"},          {'U', "5a", 0, "n"},
               {'A', "9f36", 1, "nn"}, {'U', "9F36", 0, "nn"},       {'D', "9F36", 0, "nn"},
               {'F', "9F3", 0, "nn"},  {'A', "9F361", 1, "nnn"},     {'A', "", 1, "nnnn"},
               {'D', "", 1, "nnn"},    {'A', "\xC3\xA4", 1, "nnnn"}, {'A', "\xC3\x84", 1, "nnnnn"}};
  for (const auto& [operation, tag, done, shortTexts] : steps) {
    const TagdictData record = MakeRecord({tag, "n", ""});
    TagdictData found{};
    EXPECT_EQ(operation == 'A'   ? process.Add(record)
              : operation == 'D' ? process.Delete(tag)
              : operation == 'U' ? process.Update(record)
                                 : process.Find(tag, found),
              done)
        << operation << tag;
    EXPECT_TRUE(operation != 'F' || done == 0 || found.shortText[0] == shortTexts[0]);
    std::string texts;
    for (const Texts& each : process.Records()) texts += each[1];
    EXPECT_EQ(texts, shortTexts) << operation << tag;
  }
}

}  // namespace
}  // namespace orvane_test
