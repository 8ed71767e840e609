#include "platform/module.h"

#include <windows.h>

#include <string>
#include <utility>

namespace orvane::platform {

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

Module LoadModule(const char* fileName) { return Module(LoadLibraryA(fileName)); }

Module LoadModuleFromOwnFolder(const char* fileName) {
  HMODULE self = nullptr;
  constexpr DWORD kByAddress =
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  if (GetModuleHandleExA(kByAddress, reinterpret_cast<LPCSTR>(&LoadModuleFromOwnFolder), &self) ==
      0) {
    return {};
  }
  char path[MAX_PATH];
  const DWORD length = GetModuleFileNameA(self, path, MAX_PATH);
  if (length == 0 || length == MAX_PATH) return {};
  const std::string own(path, length);
  return Module(LoadLibraryA((own.substr(0, own.rfind('\\') + 1) + fileName).c_str()));
}

}  // namespace orvane::platform
