#include "host/tags_dictionary.h"

#include <orvane.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>

#include "host/failure.h"
#include "host/text.h"
#include "host/text_input.h"

namespace host {
namespace {

constexpr const char* kFile = "dictdata.bin";

std::string Trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r";
  const size_t begin = text.find_first_not_of(kBlanks);
  if (begin == text.npos) return "";
  return std::string(text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin));
}

// What can't be stored whole is not stored.
void CheckEntry(const TagEntry& entry) {
  const auto check = [](std::string_view text, size_t room, const std::string& what) {
    if (text.size() < room) return;
    throw Failure(kScriptFault, "the " + what + " has more than " + Counted(room - 1, "byte"));
  };
  if (entry.tag.empty() || !std::all_of(entry.tag.begin(), entry.tag.end(), IsHexDigit)) {
    throw Failure(kScriptFault, Printable(entry.tag) + " is no tag");
  }
  check(entry.tag, sizeof TagdictData::tag, "tag");
  check(entry.name, sizeof TagdictData::shortText, "name");
  check(entry.text, sizeof TagdictData::longText, "text");
}

TagdictData RecordOf(const TagEntry& entry) {
  CheckEntry(entry);
  TagdictData record{};
  UpperCase(entry.tag).copy(record.tag, sizeof record.tag - 1);
  entry.name.copy(record.shortText, sizeof record.shortText - 1);
  entry.text.copy(record.longText, sizeof record.longText - 1);
  return record;
}

// How many records the library can have read from the file: what the file says, as far as it is
// long enough for them.
size_t RecordsInFile() {
  constexpr size_t kShortestRecord = 3;
  std::ifstream file(kFile, std::ios::binary);
  std::array<char, 4> octets{};
  if (!file.read(octets.data(), octets.size())) return 0;
  uint32_t count = 0;
  for (size_t i = octets.size(); i-- > 0;) count = count << 8 | static_cast<uint8_t>(octets[i]);
  std::error_code error;
  const auto size = static_cast<size_t>(std::filesystem::file_size(kFile, error));
  return error ? 0 : std::min<size_t>(count, size / kShortestRecord);
}

std::vector<TagdictData> Records() {
  std::vector<TagdictData> records(RecordsInFile());
  int32_t count = 0;
  if (GetTagdict(records.data(), &count) == 0) {
    throw Failure(kFileFault, std::string(kFile) + " can't be read");
  }
  records.resize(static_cast<size_t>(count));
  return records;
}

// The library does not tell whether it could write.
void Save() {
  std::error_code error;
  const bool isNew = !std::filesystem::exists(kFile, error);
  const bool canWrite =
      isNew || std::fstream(kFile, std::ios::in | std::ios::out | std::ios::binary);
  if (canWrite) FlushTagdict();
  if (!canWrite || !std::filesystem::exists(kFile, error)) {
    throw Failure(kFileFault, std::string(kFile) + " can't be written");
  }
}

[[noreturn]] void FailAbsent(std::string_view tag) {
  throw Failure(kExpectationFailed, "the dictionary has no tag " + Printable(tag));
}

std::optional<TagdictData> Find(std::string_view tag) {
  TagdictData record;
  if (FindTagdictData(std::string(tag).c_str(), &record) == 0) return std::nullopt;
  return record;
}

// Replaces an entry in whatever case its tag stands.
void Put(TagdictData record) {
  if (const auto old = Find(record.tag)) DeleteTagdictData(old->tag);
  if (AddTagdictData(&record) == 0) {
    throw Failure(kFileFault, std::string("tag ") + record.tag + " can't be stored");
  }
}

void PrintRecord(std::ostream& out, const TagdictData& record) {
  std::string tag = Printable(record.tag);
  tag.resize(std::max<size_t>(tag.size(), 6), ' ');
  out << tag << "  " << Printable(record.shortText) << '\n';
}

}  // namespace

void PrintTags(std::ostream& out) {
  for (const TagdictData& record : Records()) PrintRecord(out, record);
}

void PrintTag(std::ostream& out, std::string_view tag) {
  const auto record = Find(tag);
  if (!record) FailAbsent(tag);
  PrintRecord(out, *record);
  if (record->longText[0] != '\0') out << "        " << Printable(record->longText) << '\n';
}

void AddTag(const TagEntry& entry, bool replace) {
  const TagdictData record = RecordOf(entry);
  if (!replace && Find(record.tag)) {
    throw Failure(kExpectationFailed, std::string("the dictionary has tag ") + record.tag +
                                          " already; --replace puts this in its place");
  }
  Put(record);
  Save();
}

void RemoveTag(std::string_view tag) {
  const auto record = Find(tag);
  if (!record) FailAbsent(tag);
  DeleteTagdictData(record->tag);
  Save();
}

size_t ImportTags(const std::vector<TagEntry>& entries) {
  std::vector<TagdictData> records;
  records.reserve(entries.size());
  for (const TagEntry& entry : entries) records.push_back(RecordOf(entry));
  for (const TagdictData& record : records) Put(record);
  Save();
  return records.size();
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
