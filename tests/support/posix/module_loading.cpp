#include "support/module_loading.h"

#include <dlfcn.h>

#include <stdexcept>

namespace support {

std::string ModuleFileName(const std::string& name) { return "lib" + name + ".so"; }

void* LoadModule(const std::filesystem::path& file) {
  void* const module = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!module) throw std::runtime_error(dlerror());
  return module;
}

void* FindLoadedModule(const std::string& fileName) {
  void* const module = dlopen(fileName.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NOLOAD);
  if (module) dlclose(module);
  return module;
}

void* FindExport(void* module, const char* name) { return dlsym(module, name); }

void UnloadModule(void* module) { dlclose(module); }

}  // namespace support
