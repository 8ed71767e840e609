#include "tags/dictionary_file.h"

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "platform/code_page.h"

namespace orvane {
namespace {

constexpr std::uint8_t kLongLength = 0xFF;       // the length follows in two octets
constexpr std::uint16_t kLongerLength = 0xFFFF;  // the length follows in four octets
constexpr std::uint32_t kLongestLength = 0xFFFFFFFF;
constexpr std::uint16_t kWideText = 0xFFFE;  // wide text; its length starts again behind this

static_assert(sizeof(TagdictData::longText) < kWideText, "the writer knows the first two forms");

// Reads small pieces of a file of any size. Every function is false at the file's end.
class Reader {
 public:
  explicit Reader(platform::InputFile& file) : file_(file) {}

  bool Read(char* out, std::size_t size) {
    while (size > 0) {
      if (next_ == end_ && !Fill()) return false;
      const std::size_t part = std::min(size, end_ - next_);
      std::memcpy(out, area_.data() + next_, part);
      next_ += part;
      out += part;
      size -= part;
    }
    return true;
  }

  bool Skip(std::uint64_t size) {
    while (size > 0) {
      if (next_ == end_ && !Fill()) return false;
      const auto part = static_cast<std::size_t>(std::min<std::uint64_t>(size, end_ - next_));
      next_ += part;
      size -= part;
    }
    return true;
  }

  // Little-endian.
  template <std::unsigned_integral Number>
  bool Read(Number& number) {
    std::array<char, sizeof(Number)> octets;
    if (!Read(octets.data(), octets.size())) return false;
    std::uint64_t value = 0;
    for (std::size_t i = octets.size(); i-- > 0;) {
      value = value << 8U | static_cast<unsigned char>(octets[i]);
    }
    number = static_cast<Number>(value);
    return true;
  }

 private:
  bool Fill() {
    next_ = 0;
    end_ = file_.Read(area_.data(), area_.size());
    return end_ > 0;
  }

  platform::InputFile& file_;
  std::array<char, 4096> area_;
  std::size_t next_ = 0;
  std::size_t end_ = 0;
};

struct Length {
  std::uint64_t characters = 0;
  bool wide = false;
};

template <std::unsigned_integral Number>
bool ReadNumber(Reader& reader, std::uint64_t& out) {
  Number number;
  if (!reader.Read(number)) return false;
  out = number;
  return true;
}

bool ReadLength(Reader& reader, Length& length) {
  std::uint64_t& count = length.characters;
  for (;;) {
    if (!ReadNumber<std::uint8_t>(reader, count)) return false;
    if (count != kLongLength) return true;
    if (!ReadNumber<std::uint16_t>(reader, count)) return false;
    if (count != kWideText) break;
    length.wide = true;
  }
  if (count != kLongerLength) return true;
  if (!ReadNumber<std::uint32_t>(reader, count)) return false;
  return count != kLongestLength || ReadNumber<std::uint64_t>(reader, count);
}

bool ReadNarrow(Reader& reader, std::uint64_t count, std::size_t most, std::string& text) {
  text.resize(static_cast<std::size_t>(std::min<std::uint64_t>(count, most)));
  return reader.Read(text.data(), text.size()) && reader.Skip(count - text.size());
}

bool ReadWide(Reader& reader, std::uint64_t count, std::size_t most, std::string& text) {
  // One narrow character comes from at most two units, a surrogate pair.
  std::u16string units;
  const std::uint64_t kept = std::min<std::uint64_t>(count, 2 * most);
  while (units.size() < kept) {
    std::uint16_t unit;
    if (!reader.Read(unit)) return false;
    units += static_cast<char16_t>(unit);
  }
  if (!reader.Skip(count - kept) || !reader.Skip(count - kept)) return false;
  text = platform::AnsiText(units).substr(0, most);
  return true;
}

// Reads a text, cut for a field of this size with its terminator.
bool ReadText(Reader& reader, std::size_t size, std::string& text) {
  Length length;
  if (!ReadLength(reader, length)) return false;
  if (!(length.wide ? ReadWide : ReadNarrow)(reader, length.characters, size - 1, text)) {
    return false;
  }
  text.resize(std::min(text.find('\0'), text.size()));
  return true;
}

template <std::unsigned_integral Number>
void AppendNumber(std::string& image, Number number) {
  for (std::size_t i = 0; i < sizeof(Number); ++i) image += static_cast<char>(number >> 8 * i);
}

void AppendField(std::string& image, std::string_view text) {
  if (text.size() < kLongLength) {
    AppendNumber(image, static_cast<std::uint8_t>(text.size()));
  } else {
    AppendNumber(image, kLongLength);
    AppendNumber(image, static_cast<std::uint16_t>(text.size()));
  }
  image += text;
}

}  // namespace

std::list<PackedRecord> ReadRecords(platform::InputFile& file) {
  Reader reader(file);
  std::list<PackedRecord> records;
  std::uint32_t bits;
  if (!reader.Read(bits)) return records;
  std::string tag, shortText, longText;
  for (auto left = static_cast<std::int32_t>(bits); left > 0; --left) {
    if (!ReadText(reader, sizeof TagdictData::tag, tag) ||
        !ReadText(reader, sizeof TagdictData::shortText, shortText) ||
        !ReadText(reader, sizeof TagdictData::longText, longText)) {
      break;
    }
    records.emplace_back(tag, shortText, longText);
  }
  return records;
}

void AppendCount(std::string& image, std::int32_t count) {
  AppendNumber(image, static_cast<std::uint32_t>(count));
}

void AppendRecord(std::string& image, const TagdictData& record) {
  AppendField(image, record.tag);
  AppendField(image, record.shortText);
  AppendField(image, record.longText);
}

}  // namespace orvane
