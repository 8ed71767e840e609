#include "platform/module.h"

#include <windows.h>

#include <string>
#include <string_view>
#include <utility>

namespace orvane::platform {
namespace {

HMODULE OwnModule(DWORD besides) {
  HMODULE self = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | besides,
                     reinterpret_cast<LPCWSTR>(&OwnModule), &self);
  return self;
}

// Pinned: the library stays in the process, with its state, after the host unloads it.
const HMODULE kSelf = OwnModule(GET_MODULE_HANDLE_EX_FLAG_PIN);

// The folder with its last backslash. Wide text: a folder's name may have characters that the code
// page lacks.
std::wstring OwnFolder() {
  if (kSelf == nullptr) return {};
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const auto room = static_cast<DWORD>(path.size());
    const DWORD length = GetModuleFileNameW(kSelf, path.data(), room);
    if (length < room) {
      path.resize(length);
      return path.substr(0, path.rfind(L'\\') + 1);
    }
    path.resize(2 * path.size());
  }
}

// Windows takes a longer path only with this prefix, or if the process allows long paths.
std::wstring WithMarkIfLong(const std::wstring& path) {
  if (path.size() < MAX_PATH || path.starts_with(LR"(\\?\)")) return path;
  return path.starts_with(LR"(\\)") ? LR"(\\?\UNC\)" + path.substr(2) : LR"(\\?\)" + path;
}

// Searches the program's folder, the folders given to AddDllDirectory, and the system's.
Module LoadFromChosenFolders(const char* fileName) {
  return Module(LoadLibraryExA(fileName, nullptr, LOAD_LIBRARY_SEARCH_DEFAULT_DIRS));
}

}  // namespace

Module::~Module() {
  if (handle_ != nullptr) FreeLibrary(static_cast<HMODULE>(handle_));
}

void* Module::Find(const char* name) const {
  if (handle_ == nullptr) return nullptr;
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

Module LoadModule(const char* fileName) {
  Module module(LoadLibraryA(fileName));
  if (!module) module = LoadFromChosenFolders(fileName);
  return module ? std::move(module) : LoadModuleFromOwnFolder(fileName);
}

Module LoadOwnModule(const char* fileName) {
  HMODULE loaded = nullptr;
  GetModuleHandleExA(0, fileName, &loaded);
  Module module(loaded);
  if (!module) module = LoadFromChosenFolders(fileName);
  return module ? std::move(module) : LoadModuleFromOwnFolder(fileName);
}

Module LoadModuleFromOwnFolder(const char* fileName) {
  const std::wstring folder = OwnFolder();
  if (folder.empty()) return {};
  const std::string_view name = fileName;
  const std::wstring path = WithMarkIfLong(folder + std::wstring(name.begin(), name.end()));
  // The module's own dependencies may be in its folder.
  return Module(LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
}

}  // namespace orvane::platform
