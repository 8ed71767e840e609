#include "platform/code_page.h"

#include <windows.h>

namespace orvane::platform {

std::string AnsiText(std::u16string_view text) {
  if (text.empty()) return {};
  const auto* const wide = reinterpret_cast<const wchar_t*>(text.data());
  const auto units = static_cast<int>(text.size());
  const auto convert = [&](char* area, int room) {
    return WideCharToMultiByte(CP_ACP, 0, wide, units, area, room, "?", nullptr);
  };
  std::string out(static_cast<std::size_t>(convert(nullptr, 0)), '\0');
  out.resize(static_cast<std::size_t>(convert(out.data(), static_cast<int>(out.size()))));
  return out;
}

}  // namespace orvane::platform
