#include "util/character_sets.h"

#include <span>
#include <stdexcept>

namespace orvane {
namespace {

using platform::CodePage;
using platform::Conversion;

constexpr auto kNoTranslation = "Invalid UTF-8 sequence.";
constexpr auto kError = "Error in conversion.";
constexpr auto kCountsDiffer = "La falla!";

// Sizes, converts and gives the text before the first zero.
template <typename Unit, typename Convert>
std::basic_string<Unit> Leg(const char* noTranslation, Convert convert) {
  const Conversion size = convert(std::span<Unit>{});
  if (size.units == 0) throw std::runtime_error(size.noTranslation ? noTranslation : kError);
  std::basic_string<Unit> area(size.units, Unit{});
  if (convert(std::span<Unit>(area)).units != size.units) throw std::runtime_error(kCountsDiffer);
  area.resize(std::char_traits<Unit>::length(area.c_str()));
  return area;
}

std::u16string ToWide(const CodePageCalls& calls, CodePage from, const char* text) {
  return Leg<char16_t>(kNoTranslation,
                       [&](std::span<char16_t> area) { return calls.toWide(from, text, area); });
}

std::string FromWide(const CodePageCalls& calls, CodePage to, const std::u16string& text) {
  // Nothing is invalid about what can't be put into UTF-8 here: wide text comes from the first leg.
  return Leg<char>(to == CodePage::kUtf8 ? kError : kNoTranslation,
                   [&](std::span<char> area) { return calls.fromWide(to, text.c_str(), area); });
}

}  // namespace

std::string AnsiToUtf8(const CodePageCalls& calls, const char* text) {
  return FromWide(calls, CodePage::kUtf8, ToWide(calls, CodePage::kAnsi, text));
}

std::string Utf8ToOem(const CodePageCalls& calls, const char* text) {
  return FromWide(calls, CodePage::kOem, ToWide(calls, CodePage::kUtf8, text));
}

}  // namespace orvane
