#include "recorder/next_module.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#define PSAPI_VERSION 2
#include <psapi.h>

#include <string_view>
#include <vector>

#include "recordings/process.h"

namespace recorder {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLongestPath = 32768;

HMODULE Own() {
  HMODULE self = nullptr;
  GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<LPCWSTR>(&Own), &self);
  return self;
}

fs::path FileOf(HMODULE module) {
  std::wstring path(kLongestPath, L'\0');
  path.resize(GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())));
  return path;
}

// Another loaded module with this file's name.
HMODULE FindLoaded(const fs::path& own) {
  std::vector<HMODULE> modules(4096);
  DWORD size = static_cast<DWORD>(modules.size() * sizeof(HMODULE));
  if (EnumProcessModules(GetCurrentProcess(), modules.data(), size, &size) == 0) return nullptr;
  modules.resize(std::min(modules.size(), size / sizeof(HMODULE)));
  const std::wstring name = own.filename().wstring();
  for (const HMODULE module : modules) {
    const std::wstring other = FileOf(module).filename().wstring();
    const bool same = CompareStringOrdinal(other.c_str(), -1, name.c_str(), -1, TRUE) == CSTR_EQUAL;
    if (same && module != Own()) return module;
  }
  return nullptr;
}

fs::path SystemFolder() {
  std::wstring path(kLongestPath, L'\0');
  path.resize(GetSystemDirectoryW(path.data(), static_cast<UINT>(path.size())));
  return path;
}

}  // namespace

void* LoadNextModule() {
  if (const auto named = recordings::EnvironmentPath("ORVANE_RECORD_NEXT")) {
    return LoadLibraryExW(named->c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  }
  const fs::path own = FileOf(Own());
  if (const HMODULE loaded = FindLoaded(own)) return loaded;
  const HMODULE module = LoadLibraryW((SystemFolder() / own.filename()).c_str());
  return module != Own() ? module : nullptr;
}

void* FindFunction(void* module, const char* name) {
  const auto function = GetProcAddress(static_cast<HMODULE>(module), name);
  // If two modules have one name, Wine finds the one that was asked last: make that this one again.
  GetProcAddress(Own(), name);
  return reinterpret_cast<void*>(function);
}

std::string ToUtf8(const char* name) {
  const int room = MultiByteToWideChar(CP_ACP, 0, name, -1, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(room), L'\0');
  MultiByteToWideChar(CP_ACP, 0, name, -1, wide.data(), room);
  const std::u8string text = fs::path(wide.c_str()).u8string();
  return {text.begin(), text.end()};
}

}  // namespace recorder
