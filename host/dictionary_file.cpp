#include "host/dictionary_file.h"

#include <orvane.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <istream>
#include <limits>
#include <system_error>
#include <utility>

#include "host/failure.h"

namespace host {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void FailUnreadable() {
  throw Failure(kFileFault, std::string(kDictionaryFile) + " can't be read");
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

  // The part of a text that a field of that size holds.
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

  // From UTF-16, little-endian.
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

}  // namespace

std::vector<TagEntry> ReadDictionary() {
  std::error_code error;
  const fs::file_status status = fs::status(kDictionaryFile, error);
  if (status.type() == fs::file_type::not_found) return {};
  if (!fs::is_regular_file(status)) FailUnreadable();
  std::ifstream in(kDictionaryFile, std::ios::binary);
  if (!in) FailUnreadable();
  FileReader reader(in);
  if (reader.AtEnd()) return {};  // made, but never written to
  return ReadEntries(reader);
}

}  // namespace host
