// The input is lines of operations and, behind an empty line, the bytes of dictdata.bin; without
// such a line there is no file at the start:
//   +tag|short text|long text   adds        ?tag   finds
//   *tag|short text|long text   updates     -tag   deletes
//   !   writes the file             ~   begins again, as in a new process
// Each answer is that of a plain list. What is written must be the list's image to the byte, and
// must read back as the same list. The dictionary is compiled in, so that it can begin again.
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/character_set.h"
#include "fuzz/input.h"
#include "orvane.h"
#include "tags/tag_dictionary.h"
#include "tags/working_folder.h"

namespace orvane_fuzz {
namespace {

using orvane_test::ReadFile;

constexpr char kFile[] = "dictdata.bin";
constexpr std::size_t kWidths[] = {20, 200, 1024};

using Texts = std::vector<std::string>;

std::string UpToZero(const std::string& text) { return text.substr(0, text.find('\0')); }

unsigned Octet(char c) { return static_cast<unsigned char>(c); }

void AppendUtf8(std::string& out, unsigned character) {
  const unsigned leads[] = {0, 0, 0xC0, 0xE0, 0xF0};
  const int size = character < 0x80 ? 1 : character < 0x800 ? 2 : character < 0x10000 ? 3 : 4;
  out += static_cast<char>(leads[size == 1 ? 0 : size] | character >> 6 * (size - 1));
  for (int i = size - 2; i >= 0; --i) out += static_cast<char>(0x80 | (character >> 6 * i & 0x3F));
}

// Half a pair by itself becomes a question mark.
std::string Utf8(const std::u16string& units) {
  std::string out;
  for (std::size_t i = 0; i < units.size(); ++i) {
    const unsigned unit = units[i];
    const unsigned next = i + 1 < units.size() ? units[i + 1] : 0;
    if (unit < 0xD800 || unit >= 0xE000) {
      AppendUtf8(out, unit);
    } else if (unit < 0xDC00 && next >= 0xDC00 && next < 0xE000) {
      AppendUtf8(out, 0x10000 + ((unit & 0x3FF) << 10 | (next & 0x3FF)));
      ++i;
    } else {
      out += '?';
    }
  }
  return out;
}

// The plain reader of a file.
class Image {
 public:
  explicit Image(std::string_view bytes) : input_(bytes) {}

  std::vector<Texts> Records() {
    std::vector<Texts> records;
    auto count = static_cast<std::int32_t>(Number(4));
    for (; count > 0 && !ended_; --count) {
      Texts record;
      for (const std::size_t width : kWidths) record.push_back(Field(width));
      if (!ended_) records.push_back(record);
    }
    return records;
  }
  // Whether the character set had a say.
  bool Wide() const { return wide_; }

 private:
  std::uint64_t Number(std::size_t octets) {
    const std::string_view bytes = Take(octets);
    std::uint64_t number = 0;
    for (std::size_t i = bytes.size(); i-- > 0;) {
      number = number * 256 + Octet(bytes[i]);
    }
    return number;
  }
  std::string_view Take(std::uint64_t count) {
    ended_ = ended_ || count > input_.size();
    if (ended_) return {};
    const std::string_view taken = input_.substr(0, static_cast<std::size_t>(count));
    input_.remove_prefix(taken.size());
    return taken;
  }
  std::uint64_t Length(bool& wide) {
    std::uint64_t length = Number(1);
    if (length != 0xFF) return length;
    length = Number(2);
    if (length == 0xFFFE && !ended_) {
      wide = true;
      return Length(wide);
    }
    if (length != 0xFFFF) return length;
    length = Number(4);
    return length == 0xFFFFFFFF ? Number(8) : length;
  }
  std::string Field(std::size_t width) {
    bool wide = false;
    const std::uint64_t length = Length(wide);
    if (!wide) return UpToZero(std::string(Take(length))).substr(0, width - 1);
    ended_ = ended_ || length > input_.size();
    const std::string_view octets = Take(ended_ ? 0 : 2 * length);
    std::u16string units;
    for (std::size_t i = 0; i < octets.size(); i += 2) {
      units += static_cast<char16_t>(Octet(octets[i]) | Octet(octets[i + 1]) << 8);
    }
    const std::string text = Utf8(units);
    wide_ = wide_ || text.size() != units.size();
    return UpToZero(text).substr(0, width - 1);
  }

  std::string_view input_;
  bool ended_ = false;
  bool wide_ = false;
};

std::string Upper(std::string text) {
  for (char& c : text) c = static_cast<char>(c >= 'a' && c <= 'z' ? c - 32 : c);
  return text;
}

Texts TextsOf(const TagdictData& record) { return {record.tag, record.shortText, record.longText}; }

std::string ImageOf(const std::vector<Texts>& list) {
  const auto number = [](std::size_t value, std::size_t octets) {
    std::string bytes;
    for (std::size_t i = 0; i < octets; ++i) bytes += static_cast<char>(value >> 8 * i & 0xFF);
    return bytes;
  };
  std::string image = number(list.size(), 4);
  for (const Texts& record : list) {
    for (const std::string& text : record) {
      image += text.size() < 255 ? number(text.size(), 1) : number(text.size() * 256 + 255, 3);
      image += text;
    }
  }
  return image;
}

class Check {
 public:
  Check() { BeginAgain(); }

  void Run(std::string_view line) {
    const std::string_view rest = line.substr(1);
    switch (line[0]) {
      case '+':
      case '*':
        return Store(rest, line[0] == '*');
      case '-':
        return Expect(DeleteTagdictData(Text(rest)) == Delete(std::string(rest)), "DeleteTagdict");
      case '?':
        return Find(rest);
      case '!':
        return Flush();
      case '~':
        BeginAgain();
    }
  }

  void ReadBack() {
    Flush();
    const std::vector<Texts> before = list_;
    BeginAgain();
    Expect(list_ == before, "the list read back");
  }

  void Compare() {
    Room room(sizeof(TagdictData) * list_.size());
    int32_t count = -1;
    auto* const records = reinterpret_cast<TagdictData*>(room.Data());
    Expect(GetTagdict(records, &count) == 1, "GetTagdict");
    Expect(count == static_cast<int32_t>(list_.size()), "the number of records");
    for (std::size_t i = 0; i < list_.size(); ++i) {
      Expect(TextsOf(records[i]) == list_[i], "a record's texts");
    }
  }

 private:
  void BeginAgain() {
    *orvane::EnsureTagDictionary() = orvane::TagDictionary();
    const std::string bytes = ReadFile(kFile).value_or("");
    Image image(bytes);
    list_ = image.Records();
    if (image.Wide() && !UseCharacterSet("UTF-8")) Adopt();
    Compare();
  }
  // Takes the texts that only the system's character set could tell.
  void Adopt() {
    std::vector<TagdictData> records(list_.size());
    int32_t count = 0;
    GetTagdict(records.data(), &count);
    Expect(count == static_cast<int32_t>(list_.size()), "the number of records");
    for (std::size_t i = 0; i < list_.size(); ++i) list_[i] = TextsOf(records[i]);
  }
  void Flush() {
    Expect(FlushTagdict() == 1, "FlushTagdict");
    ExpectSame(ReadFile(kFile).value_or("no file"), ImageOf(list_), "the file");
  }
  std::size_t IndexOf(const std::string& tag, bool fold) const {
    std::size_t i = 0;
    const auto same = [&](const std::string& other) {
      return fold ? Upper(tag) == Upper(other) : tag == other;
    };
    while (i < list_.size() && !same(list_[i][0])) ++i;
    return i;
  }
  bool Delete(const std::string& tag) {
    const std::size_t at = IndexOf(tag, false);
    if (at == list_.size()) return false;
    list_.erase(list_.begin() + static_cast<std::ptrdiff_t>(at));
    return true;
  }
  void Find(std::string_view tag) {
    Room room(sizeof(TagdictData));
    auto* const out = reinterpret_cast<TagdictData*>(room.Data());
    const std::size_t at = IndexOf(std::string(tag), true);
    const bool found = at < list_.size();
    Expect(FindTagdictData(Text(tag), out) == found, "FindTagdictData");
    if (found) Expect(TextsOf(*out) == list_[at], "the record found");
    if (!found) ExpectSame(room.Bytes(), std::string(room.Size(), Room::kFiller), "untouched");
  }
  // A text that is too long for its field is handed over without a terminator.
  void Store(std::string_view line, bool update) {
    Input fields(reinterpret_cast<const std::uint8_t*>(line.data()), line.size());
    const Room room(sizeof(TagdictData));
    TagdictData record;
    std::memcpy(&record, room.Bytes().data(), sizeof record);
    char* const areas[] = {record.tag, record.shortText, record.longText};
    Texts texts;
    for (std::size_t i = 0; i < 3; ++i) {
      std::string text(fields.Until('|'));
      texts.push_back(text.substr(0, kWidths[i] - 1));
      text += '\0';
      text.copy(areas[i], kWidths[i]);
    }
    if (update && IndexOf(texts[0], true) < list_.size()) Delete(texts[0]);
    const bool added = IndexOf(texts[0], true) == list_.size();
    if (added) list_.push_back(texts);
    Expect((update ? UpTagdictData : AddTagdictData)(&record) == added, "Add or UpTagdictData");
  }

  std::vector<Texts> list_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const orvane_test::WorkingFolder folder;
  UseCharacterSet("UTF-8");
  std::filesystem::remove(kFile);
  Input input(data, size);
  std::vector<std::string_view> lines;
  bool has_file = false;
  while (!input.Empty() && !has_file) {
    const std::string_view line = input.Line();
    has_file = line.empty();
    if (!has_file) lines.push_back(line.substr(0, line.find('\0')));
  }
  if (has_file) orvane_test::WriteFile(kFile, std::string(input.Rest()));
  Check check;
  for (const std::string_view line : lines) {
    if (!line.empty()) check.Run(line);
  }
  check.Compare();
  check.ReadBack();
  return 0;
}

}  // namespace orvane_fuzz
