#include "platform/code_page.h"

#include <windows.h>

namespace orvane::platform {
namespace {

static_assert(static_cast<UINT>(CodePage::kAnsi) == CP_ACP);
static_assert(static_cast<UINT>(CodePage::kOem) == CP_OEMCP);
static_assert(static_cast<UINT>(CodePage::kUtf8) == CP_UTF8);

Conversion Outcome(int count) {
  if (count > 0) return {static_cast<std::size_t>(count), false};
  return {0, GetLastError() == ERROR_NO_UNICODE_TRANSLATION};
}

}  // namespace

Conversion ToWide(CodePage from, const char* text, std::span<char16_t> out) {
  return Outcome(MultiByteToWideChar(static_cast<UINT>(from), 0, text, -1,
                                     reinterpret_cast<wchar_t*>(out.data()),
                                     static_cast<int>(out.size())));
}

Conversion FromWide(CodePage to, const char16_t* text, std::span<char> out) {
  return Outcome(WideCharToMultiByte(static_cast<UINT>(to), 0,
                                     reinterpret_cast<const wchar_t*>(text), -1, out.data(),
                                     static_cast<int>(out.size()), nullptr, nullptr));
}

std::string AnsiText(std::u16string_view text) {
  if (text.empty()) return {};
  const auto* const wide = reinterpret_cast<const wchar_t*>(text.data());
  const auto units = static_cast<int>(text.size());
  // UTF-8 lacks no character, and with it the call refuses a substitute.
  const char* const missing = GetACP() == CP_UTF8 ? nullptr : "?";
  const auto convert = [&](char* area, int room) {
    return WideCharToMultiByte(CP_ACP, 0, wide, units, area, room, missing, nullptr);
  };
  std::string out(static_cast<std::size_t>(convert(nullptr, 0)), '\0');
  out.resize(static_cast<std::size_t>(convert(out.data(), static_cast<int>(out.size()))));
  return out;
}

}  // namespace orvane::platform
