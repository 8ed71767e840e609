#include "host/platform.h"

#include <dlfcn.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace host {

bool OutputTakesColour() {
  const char* terminal = std::getenv("TERM");
  const char* refusal = std::getenv("NO_COLOR");
  if (refusal != nullptr && *refusal != '\0') return false;
  return isatty(STDOUT_FILENO) != 0 && terminal != nullptr && std::string_view(terminal) != "dumb";
}

bool InputIsTerminal() { return isatty(STDIN_FILENO) != 0; }

std::filesystem::path ProgramFolder() {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
}

std::string_view ModuleExtension() { return ".so"; }

bool LoadModule(const std::filesystem::path& file) {
  return dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL) != nullptr;
}

bool LoadedModuleExports(std::string_view vendor, const char* function) {
  const std::string fileName = "lib" + std::string(vendor) + ".so";
  void* const module = dlopen(fileName.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NOLOAD);
  if (module == nullptr) return false;
  const bool found = dlsym(module, function) != nullptr;
  dlclose(module);
  return found;
}

}  // namespace host
