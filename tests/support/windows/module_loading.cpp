#include "support/module_loading.h"

#include <windows.h>

#include <stdexcept>

namespace support {

std::string ModuleFileName(const std::string& name) { return name + ".dll"; }

void* LoadModule(const std::filesystem::path& file) {
  void* const module = LoadLibraryW(file.c_str());
  if (!module) throw std::runtime_error("error " + std::to_string(GetLastError()));
  return module;
}

void* FindLoadedModule(const std::string& fileName) { return GetModuleHandleA(fileName.c_str()); }

void* FindExport(void* module, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module), name));
}

void UnloadModule(void* module) { FreeLibrary(static_cast<HMODULE>(module)); }

}  // namespace support
