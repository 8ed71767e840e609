#include "recordings/process.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <string>
#include <string_view>

namespace recordings {

uint32_t ProcessNumber() { return GetCurrentProcessId(); }

std::optional<std::filesystem::path> EnvironmentPath(const char* name) {
  constexpr DWORD kLongest = 32768;
  std::wstring value(kLongest, L'\0');
  const std::wstring wide(name, name + std::string_view(name).size());
  value.resize(GetEnvironmentVariableW(wide.c_str(), value.data(), kLongest));
  if (value.empty()) return std::nullopt;
  return std::filesystem::path(value);
}

}  // namespace recordings
