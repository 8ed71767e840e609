// The first byte chooses a character set, the rest is a text that goes through both conversions.
// What comes out is told beforehand for UTF-8 and ISO-8859-1; of every set it is known that UTF-8
// comes out valid, that ASCII stays as it is, and how much room is enough.
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "fuzz/character_set.h"
#include "fuzz/input.h"
#include "orvane.h"

namespace orvane_fuzz {
namespace {

constexpr const char* kSets[] = {"",           "ISO-8859-1", "GBK",          "GB18030",
                                 "BIG5-HKSCS", "CP1255",     "CP1252",       "KOI8-R",
                                 "CP932",      "EUC-KR",     "EUC-JISX0213", "no-such-set"};

// The number of octets of the character that a text begins with; 0 if it begins with none.
std::size_t CharacterSize(std::string_view text) {
  const auto octet = [&](std::size_t i) {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
  };
  const unsigned first = octet(0);
  if (first < 0x80) return text.empty() ? 0 : 1;
  const std::size_t size = first < 0xC2   ? 0
                           : first < 0xE0 ? 2
                           : first < 0xF0 ? 3
                           : first < 0xF5 ? 4
                                          : 0;
  for (std::size_t i = 1; i < size; ++i) {
    if ((octet(i) & 0xC0) != 0x80) return 0;
  }
  const unsigned second = octet(1);
  const bool overlong = (first == 0xE0 && second < 0xA0) || (first == 0xF0 && second < 0x90);
  const bool surrogate = first == 0xED && second >= 0xA0;
  return overlong || surrogate || (first == 0xF4 && second >= 0x90) ? 0 : size;
}

// Each byte that begins no character becomes U+FFFD.
std::string Repaired(std::string_view text) {
  std::string out;
  while (!text.empty()) {
    const std::size_t size = CharacterSize(text);
    out += size == 0 ? "\xEF\xBF\xBD" : text.substr(0, size);
    text.remove_prefix(size == 0 ? 1 : size);
  }
  return out;
}

bool IsAscii(std::string_view text) {
  for (const char c : text) {
    if ((c & 0x80) != 0) return false;
  }
  return true;
}

std::string Latin1ToUtf8(std::string_view text) {
  std::string out;
  for (const char c : text) {
    const auto octet = static_cast<unsigned char>(c);
    if (octet >= 0x80) out += static_cast<char>(0xC0 | octet >> 6);
    out += octet < 0x80 ? c : static_cast<char>(0x80 | (octet & 0x3F));
  }
  return out;
}

std::string Utf8ToLatin1(std::string_view text) {
  std::string out;
  for (std::string left = Repaired(text); !left.empty();) {
    const std::size_t size = CharacterSize(left);
    const unsigned lead = static_cast<unsigned char>(left[0]);
    if (size == 1) out += left[0];
    if (size == 2 && lead < 0xC4) out += static_cast<char>((lead & 3) << 6 | (left[1] & 0x3F));
    if (size > 2 || (size == 2 && lead >= 0xC4)) out += '?';
    left.erase(0, size);
  }
  return out;
}

using Convert = void (*)(const char*, char*);

// What is written, first in the room that is promised to be enough, then in just as much.
std::string Converted(Convert convert, std::string_view text, std::size_t factor) {
  Room room(factor * text.size());
  std::memset(room.Data(), 0, room.Size());
  convert(Text(text), room.Data());
  const std::string out(room.Text());
  ExpectWritten(out, "the same again", [&](char* area) { convert(Text(text), area); });
  return out;
}

void ExpectRefusal(Convert convert, std::string_view text) {
  std::string what = "nothing";
  const std::string untouched(4 * text.size(), Room::kFiller);
  ExpectWritten(untouched, "what a refusal leaves", [&](char* out) {
    try {
      convert(Text(text), out);
    } catch (const std::runtime_error& error) {
      what = error.what();
    }
  });
  ExpectSame(what, "Error in conversion.", "what is thrown");
}

void Check(std::string_view set, std::string_view text) {
  if (set == "no-such-set") {
    ExpectRefusal(ASCII2UTF_8, text);
    ExpectRefusal(UTF_82ASCII, text);
    return;
  }
  const std::string utf8 = Converted(ASCII2UTF_8, text, 3);
  const std::string narrow = Converted(UTF_82ASCII, text, 4);
  ExpectSame(Repaired(utf8), utf8, "valid UTF-8");
  if (IsAscii(text)) ExpectSame(utf8, text, "ASCII to UTF-8");
  if (IsAscii(text)) ExpectSame(narrow, text, "ASCII from UTF-8");
  if (set == "UTF-8") {
    ExpectSame(utf8, Repaired(text), "UTF-8 to itself");
    ExpectSame(narrow, Repaired(text), "UTF-8 from itself");
  }
  if (set == "ISO-8859-1") {
    ExpectSame(utf8, Latin1ToUtf8(text), "from ISO-8859-1");
    ExpectSame(narrow, Utf8ToLatin1(text), "to ISO-8859-1");
    ExpectSame(Converted(UTF_82ASCII, utf8, 4), text, "there and back");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  const std::string_view set = kSets[input.Byte() % std::size(kSets)];
  const std::string_view rest = input.Rest();
  const bool chosen = UseCharacterSet(set.data());
  Check(!chosen ? "system" : set.empty() ? "UTF-8" : set, rest.substr(0, rest.find('\0')));
  return 0;
}

}  // namespace orvane_fuzz
