#include "host/tags_dictionary.h"

#include <orvane.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <istream>
#include <limits>
#include <map>
#include <new>
#include <optional>
#include <system_error>
#include <utility>

#include "host/decode/tag_list.h"
#include "host/failure.h"
#include "host/platform.h"
#include "host/text.h"
#include "host/text_input.h"

namespace host {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void FailUnreadable() {
  throw Failure(kFileFault, std::string("can't read ") + kDictionaryFile);
}

class FileReader {
 public:
  explicit FileReader(std::istream& in) : in_(in) {}

  bool AtEnd() { return in_.peek() == std::istream::traits_type::eof() && !in_.bad(); }
  [[noreturn]] void Fail() const {
    if (in_.bad()) FailUnreadable();
    throw Failure(kFileFault, std::string(kDictionaryFile) +
                                  " is no whole dictionary: it holds less or more than it says");
  }

  // Little-endian.
  uint64_t Number(size_t octets) {
    uint64_t number = 0;
    for (size_t i = 0; i < octets; ++i) {
      const int octet = in_.get();
      if (!in_) Fail();
      number |= static_cast<uint64_t>(octet) << 8 * i;
    }
    return number;
  }

  // The part of a text that fits a field of this size.
  std::string Text(size_t room) {
    bool wide = false;
    uint64_t count = Number(1);
    for (; count == 0xFF; count = Number(1)) {
      if ((count = Number(2)) != 0xFFFE) break;
      wide = true;
    }
    if (count == 0xFFFF) count = Number(4);
    if (count == 0xFFFFFFFF) count = Number(8);
    const size_t width = wide ? 2 : 1;
    if (count > std::numeric_limits<int32_t>::max()) Fail();
    const std::string octets = Octets(count * width, (room - 1) * width);
    const std::string text = wide ? Utf8(octets) : octets;
    return text.substr(0, text.find('\0'));
  }

 private:
  std::string Octets(size_t count, size_t most) {
    std::string octets(std::min(count, most), '\0');
    in_.read(octets.data(), static_cast<std::streamsize>(octets.size()));
    in_.ignore(static_cast<std::streamsize>(count - octets.size()));
    if (!in_) Fail();
    return octets;
  }

  // Converts from UTF-16, little-endian.
  std::string Utf8(const std::string& octets) const {
    std::u16string units;
    for (size_t i = 0; i < octets.size(); i += 2) {
      const auto low = static_cast<unsigned char>(octets[i]);
      units += static_cast<char16_t>(low | static_cast<unsigned char>(octets[i + 1]) << 8);
    }
    try {
      const std::u8string text = fs::path(units).u8string();
      return {text.begin(), text.end()};
    } catch (const std::system_error&) {  // half a character
      Fail();
    }
  }

  std::istream& in_;
};

std::vector<TagEntry> ReadEntries(FileReader& reader) {
  std::vector<TagEntry> entries;
  for (auto left = static_cast<int32_t>(reader.Number(4)); left != 0; --left) {
    if (left < 0) reader.Fail();
    TagEntry entry;
    entry.tag = reader.Text(sizeof TagdictData::tag);
    entry.name = reader.Text(sizeof TagdictData::shortText);
    entry.text = reader.Text(sizeof TagdictData::longText);
    entries.push_back(std::move(entry));
  }
  if (!reader.AtEnd()) reader.Fail();
  return entries;
}

std::string Trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r";
  const size_t begin = text.find_first_not_of(kBlanks);
  if (begin == text.npos) return "";
  return std::string(text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin));
}

// Refuses an entry that cannot be stored whole.
void CheckEntry(const TagEntry& entry) {
  const auto check = [](std::string_view text, size_t room, const std::string& what) {
    if (text.size() < room) return;
    throw Failure(kScriptFault, "the " + what + " has more than " + Counted(room - 1, "byte"));
  };
  if (entry.tag.empty() || entry.tag.size() % 2 != 0 ||
      !std::all_of(entry.tag.begin(), entry.tag.end(), IsHexDigit)) {
    throw Failure(kScriptFault,
                  Printable(entry.tag) + " is no tag: two hexadecimal digits an octet");
  }
  if (entry.name.empty()) {
    throw Failure(kScriptFault, "tag " + Printable(entry.tag) + " has no name");
  }
  check(entry.tag, sizeof TagdictData::tag, "tag");
  check(entry.name, sizeof TagdictData::shortText, "name");
  check(entry.text, sizeof TagdictData::longText, "text");
}

TagdictData RecordOf(const TagEntry& entry) {
  TagdictData record{};
  UpperCase(entry.tag).copy(record.tag, sizeof record.tag - 1);
  entry.name.copy(record.shortText, sizeof record.shortText - 1);
  entry.text.copy(record.longText, sizeof record.longText - 1);
  return record;
}

[[noreturn]] void FailAbsent(std::string_view tag) {
  throw Failure(kExpectationFailed, "the dictionary has no tag " + Printable(tag));
}

// The state after a change, by upper-case tag: an entry, or none if it was removed.
using Contents = std::map<std::string, std::optional<TagEntry>>;

Contents ByTag(const std::vector<TagEntry>& entries) {
  Contents contents;
  for (const TagEntry& entry : entries) contents.emplace(UpperCase(entry.tag), entry);
  return contents;
}

// Deletes every entry of this tag, in whatever case it is written.
void Delete(const std::string& tag) {
  TagdictData record;
  while (FindTagdictData(tag.c_str(), &record) != 0) DeleteTagdictData(record.tag);
}

void Put(const TagEntry& entry) {
  const TagdictData record = RecordOf(entry);
  Delete(record.tag);
  if (AddTagdictData(&record) == 0) throw std::bad_alloc();
}

// Reads the file again, since the library does not report a failed write.
void Save(const Contents& expected) {
  FlushTagdict();
  const Contents stored = ByTag(ReadDictionary());
  for (const auto& [tag, entry] : expected) {
    const auto found = stored.find(tag);
    if ((found == stored.end() ? std::nullopt : found->second) != entry) {
      throw Failure(kFileFault, std::string("can't write ") + kDictionaryFile);
    }
  }
}

void PrintEntry(std::ostream& out, const TagEntry& entry) {
  std::string tag = Printable(entry.tag);
  tag.resize(std::max<size_t>(tag.size(), 6), ' ');
  out << tag << "  " << Printable(entry.name) << '\n';
}

}  // namespace

std::vector<TagEntry> ReadDictionary() {
  std::error_code error;
  const fs::file_status status = fs::status(kDictionaryFile, error);
  if (status.type() == fs::file_type::not_found) return {};
  if (!fs::is_regular_file(status)) FailUnreadable();
  std::ifstream in(kDictionaryFile, std::ios::binary);
  if (!in) FailUnreadable();
  FileReader reader(in);
  if (reader.AtEnd()) return {};  // created, but never written
  return ReadEntries(reader);
}

void PrintTags(std::ostream& out) {
  for (const TagEntry& entry : ReadDictionary()) PrintEntry(out, entry);
}

void PrintTag(std::ostream& out, std::string_view tag) {
  const Contents contents = ByTag(ReadDictionary());
  const auto found = contents.find(UpperCase(tag));
  constexpr std::string_view kIndent = "        ";
  if (found != contents.end()) {
    PrintEntry(out, *found->second);
    if (!found->second->text.empty()) out << kIndent << Printable(found->second->text) << '\n';
    out << kIndent << "from " << kDictionaryFile << '\n';
    return;
  }
  const ListedTag* const listed = FindListedTag(tag);
  if (listed == nullptr) {
    throw Failure(kExpectationFailed,
                  "neither the dictionary nor the program's own list has tag " + Printable(tag));
  }
  PrintEntry(out, {std::string(listed->tag), std::string(listed->name), ""});
  out << kIndent << "from the program's own list: " << listed->standard << '\n';
}

void AddTag(const TagEntry& entry, bool replace) {
  CheckEntry(entry);
  const FolderLock lock;
  const std::string tag = UpperCase(entry.tag);
  if (ByTag(ReadDictionary()).contains(tag) && !replace) {
    throw Failure(kExpectationFailed,
                  "the dictionary has tag " + tag + " already; --replace puts this in its place");
  }
  Put(entry);
  Save({{tag, TagEntry{tag, entry.name, entry.text}}});
}

void RemoveTag(std::string_view tag) {
  const FolderLock lock;
  const std::string key = UpperCase(tag);
  if (!ByTag(ReadDictionary()).contains(key)) FailAbsent(tag);
  Delete(key);
  Save({{key, std::nullopt}});
}

size_t ImportTags(const std::vector<TagEntry>& entries) {
  for (const TagEntry& entry : entries) CheckEntry(entry);
  const FolderLock lock;
  ReadDictionary();  // throws for a damaged one, which stays as it is
  Contents expected;
  for (const TagEntry& entry : entries) {
    Put(entry);
    const std::string tag = UpperCase(entry.tag);
    expected[tag] = TagEntry{tag, entry.name, entry.text};
  }
  Save(expected);
  return entries.size();
}

std::vector<TagEntry> ReadTagList(const std::string& file) {
  TextInput in(file);
  std::vector<TagEntry> entries;
  size_t number = 0;
  while (const std::optional<std::string> line = in.NextLine()) {
    ++number;
    const std::string content = Trimmed(*line);
    if (content.empty() || content.starts_with('#')) continue;
    const size_t gap = std::min(content.find_first_of(" \t"), content.size());
    const size_t bar = std::min(content.find('|', gap), content.size());
    TagEntry entry{content.substr(0, gap), Trimmed(content.substr(gap, bar - gap)),
                   Trimmed(content.substr(std::min(bar + 1, content.size())))};
    try {
      CheckEntry(entry);
    } catch (const Failure& failure) {
      throw ScriptFailure(failure.Code(),
                          in.Name() + ":" + std::to_string(number) + ": " + failure.what());
    }
    entries.push_back(std::move(entry));
  }
  return entries;
}

}  // namespace host
