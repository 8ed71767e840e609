#include <cstring>
#include <span>
#include <stdexcept>
#include <string>

#include "orvane.h"
#include "platform/code_page.h"

namespace {

using orvane::platform::CodePage;
using orvane::platform::Conversion;

constexpr auto kNoTranslation = "Invalid UTF-8 sequence.";
constexpr auto kError = "Error in conversion.";
constexpr auto kCountsDiffer = "La falla!";

// One conversion by the system: asks for the size, converts, and gives the text before the first
// zero. Throws std::runtime_error if the system fails.
template <typename Unit, typename Convert>
std::basic_string<Unit> Leg(const char* noTranslation, Convert convert) {
  const Conversion size = convert(std::span<Unit>{});
  if (size.units == 0) throw std::runtime_error(size.noTranslation ? noTranslation : kError);
  std::basic_string<Unit> area(size.units, Unit{});
  if (convert(std::span<Unit>(area)).units != size.units) throw std::runtime_error(kCountsDiffer);
  area.resize(std::char_traits<Unit>::length(area.c_str()));
  return area;
}

std::string Converted(CodePage from, CodePage to, const char* text) {
  const auto wide = Leg<char16_t>(kNoTranslation, [&](std::span<char16_t> area) {
    return orvane::platform::ToWide(from, text, area);
  });
  // UTF-8 has every character, so a conversion to it never reports text as untranslatable.
  return Leg<char>(to == CodePage::kUtf8 ? kError : kNoTranslation, [&](std::span<char> area) {
    return orvane::platform::FromWide(to, wide.c_str(), area);
  });
}

}  // namespace

void ASCII2UTF_8(const char* text, char* out) {
  const std::string utf8 = Converted(CodePage::kAnsi, CodePage::kUtf8, text);
  // Callers provide three octets for each of theirs, but one octet of TSCII can mean up to four
  // characters. Gives as many whole characters as fit.
  std::size_t room = 3 * std::strlen(text);
  const auto isInside = [](char octet) { return (octet & 0xC0) == 0x80; };
  while (room < utf8.size() && isInside(utf8[room])) --room;
  utf8.copy(out, room);
}

void UTF_82ASCII(const char* text, char* out) {
  const std::string narrow = Converted(CodePage::kUtf8, CodePage::kOem, text);
  narrow.copy(out, 4 * std::strlen(text));
}
