#include <cstring>
#include <string>

#include "orvane.h"
#include "platform/code_page.h"
#include "util/character_sets.h"

namespace {

constexpr orvane::CodePageCalls kSystem = {orvane::platform::ToWide, orvane::platform::FromWide};

// Hands over the whole characters of UTF-8 that fit the room which callers are told of: in TSCII
// one octet stands for up to four characters.
void Store(const std::string& converted, std::size_t room, char* out) {
  const auto isInside = [](char octet) { return (octet & 0xC0) == 0x80; };
  while (room < converted.size() && isInside(converted[room])) --room;
  converted.copy(out, room);
}

}  // namespace

void ASCII2UTF_8(const char* text, char* out) {
  Store(orvane::AnsiToUtf8(kSystem, text), 3 * std::strlen(text), out);
}

void UTF_82ASCII(const char* text, char* out) {
  const std::string converted = orvane::Utf8ToOem(kSystem, text);
  converted.copy(out, 4 * std::strlen(text));
}
