#include "host/windows/wide.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace host {

std::wstring ToWide(std::string_view text) {
  const int count = static_cast<int>(text.size());
  const int room = MultiByteToWideChar(CP_UTF8, 0, text.data(), count, nullptr, 0);
  std::wstring wide(static_cast<size_t>(room), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, text.data(), count, wide.data(), room);
  return wide;
}

std::string FromWide(std::wstring_view wide) {
  const int count = static_cast<int>(wide.size());
  const int room =
      WideCharToMultiByte(CP_UTF8, 0, wide.data(), count, nullptr, 0, nullptr, nullptr);
  std::string text(static_cast<size_t>(room), '\0');
  WideCharToMultiByte(CP_UTF8, 0, wide.data(), count, text.data(), room, nullptr, nullptr);
  return text;
}

}  // namespace host
