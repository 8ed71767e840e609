#include "platform/module.h"

#include <windows.h>

#include <string>
#include <string_view>
#include <utility>

namespace orvane::platform {
namespace {

// With its last backslash. Wide, since a folder's name may have characters that the code page
// lacks. Empty if the path is too long for the system's usual area.
std::wstring OwnFolder() {
  HMODULE self = nullptr;
  constexpr DWORD kByAddress =
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  if (GetModuleHandleExW(kByAddress, reinterpret_cast<LPCWSTR>(&OwnFolder), &self) == 0) return {};
  wchar_t path[MAX_PATH];
  const DWORD length = GetModuleFileNameW(self, path, MAX_PATH);
  if (length == 0 || length == MAX_PATH) return {};
  const std::wstring own(path, length);
  return own.substr(0, own.rfind(L'\\') + 1);
}

}  // namespace

Module::Module(Module&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}

Module& Module::operator=(Module&& other) noexcept {
  std::swap(handle_, other.handle_);
  return *this;
}

Module::~Module() {
  if (handle_ != nullptr) FreeLibrary(static_cast<HMODULE>(handle_));
}

void* Module::Find(const char* name) const {
  if (handle_ == nullptr) return nullptr;
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

Module LoadModule(const char* fileName) {
  Module module(LoadLibraryA(fileName));
  return module ? std::move(module) : LoadModuleFromOwnFolder(fileName);
}

Module LoadModuleFromOwnFolder(const char* fileName) {
  const std::wstring folder = OwnFolder();
  if (folder.empty()) return {};
  const std::string_view name = fileName;
  return Module(LoadLibraryW((folder + std::wstring(name.begin(), name.end())).c_str()));
}

}  // namespace orvane::platform
