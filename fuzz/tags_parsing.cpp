// A line of the input is a text to parse; all go to one parser, and more than once, so that it has
// to give back the room of values that are replaced. Beside it runs a plain parser.
#include <cctype>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "fuzz/input.h"
#include "fuzz/plain_hex.h"
#include "orvane.h"

namespace orvane_fuzz {
namespace {

// The record's length text, and its value text.
struct Entry {
  std::string length;
  std::string value;
};
using Entries = std::map<std::string, Entry>;

std::optional<std::string> Digits(std::string_view text) {
  std::string digits;
  for (const char c : text) {
    if (c == ' ') continue;
    if (!IsHex(c)) return std::nullopt;
    digits += static_cast<char>(std::toupper(c));
  }
  return digits;
}

std::uint64_t Number(const std::string& digits) { return std::stoull(digits, nullptr, 16); }

bool ParseElements(const std::string& digits, Entries& entries) {
  if (digits.empty()) return false;
  std::size_t at = 0;
  while (at < digits.size()) {
    if (digits.size() - at < 2) return false;
    const std::string tag = digits.substr(at, 2);
    if ((Number(tag) & 0x1F) == 0x1F || digits.size() - at < 4) return false;
    const std::string first = digits.substr(at + 2, 2);
    at += 4;
    std::uint64_t length = Number(first);
    if (length >= 0x80) {
      const std::size_t count = 2 * (length - 0x80);
      if (count == 0 || count > 8 || digits.size() - at < count) return false;
      length = Number(digits.substr(at, count));
      at += count;
    }
    if (2 * length > digits.size() - at || length > 1023) return false;
    const std::string value = digits.substr(at, 2 * length);
    at += value.size();
    entries[tag] = {first, value};
    if ((Number(tag) & 0x20) != 0 && !ParseElements(value, entries)) return false;
  }
  return true;
}

bool ParseText(std::string_view text, Entries& entries) {
  const auto digits = Digits(text);
  return digits && ParseElements(*digits, entries);
}

std::string RecordOf(const Entry& entry) {
  std::string record = entry.length;
  record.resize(offsetof(TagRecord, value), '\0');
  record += entry.value;
  record.resize(sizeof(TagRecord), '\0');
  return record;
}

void CheckTag(TagParser* parser, std::string tag, const Entries& entries) {
  const Text asked(tag);
  for (char& c : tag) c = static_cast<char>(c >= 'a' && c <= 'z' ? c - 32 : c);
  const auto entry = entries.find(tag);
  const bool known = entry != entries.end();
  const std::string record = known ? RecordOf(entry->second) : std::string(sizeof(TagRecord), '\0');
  ExpectWritten(record, "a tag's record", [&](char* out) {
    Expect(TagParsing_GetTag(parser, asked, out) == known, "whether a tag is known");
  });
}

void CheckLine(TagParser* parser, std::string_view line, Entries& entries) {
  const std::string_view text = line.substr(0, line.find('\0'));
  const bool parsed = ParseText(text, entries);
  Expect(TagParsing_Parse(parser, Text(text)) == parsed, "whether a text was parsed");
  // As a tag, any text may be asked for.
  CheckTag(parser, std::string(text), entries);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::unique_ptr<TagParser, void (*)(TagParser*)> parser(TagParsing_Init(), TagParsing_Free);
  Entries entries;
  for (int round = 0; round < 3; ++round) {
    Input input(data, size);
    while (!input.Empty()) CheckLine(parser.get(), input.Line(), entries);
  }
  for (const auto& [tag, entry] : entries) CheckTag(parser.get(), tag, entries);
  for (const char* tag : {"", "6f", "6F ", "5a", "5A0", "1F"}) {
    CheckTag(parser.get(), tag, entries);
  }
  return 0;
}

}  // namespace orvane_fuzz
