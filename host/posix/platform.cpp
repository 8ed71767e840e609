#include "host/platform.h"

#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>
#include <vector>

#include "host/failure.h"

namespace host {

bool OutputTakesColour() {
  const char* terminal = std::getenv("TERM");
  const char* refusal = std::getenv("NO_COLOR");
  if (refusal != nullptr && *refusal != '\0') return false;
  return OutputIsTerminal() && terminal != nullptr && std::string_view(terminal) != "dumb";
}

bool InputIsTerminal() { return isatty(STDIN_FILENO) != 0; }
bool OutputIsTerminal() { return isatty(STDOUT_FILENO) != 0; }

std::optional<std::string> EnvironmentVariable(const std::string& name) {
  const char* const value = std::getenv(name.c_str());
  return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
}

std::filesystem::path ProgramFolder() {
  std::error_code error;
  auto folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
  if (folder.is_absolute()) return folder;
  throw Failure(kReaderFault,
                "the system does not tell where this program stands, so that its simulators can't "
                "be found: /proc/self/exe: " +
                    error.message());
}

void* LoadModule(const std::filesystem::path& file) {
  return dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
}

std::string ModuleFileName(std::string_view vendor) { return "lib" + std::string(vendor) + ".so"; }

FoundModule FindModule(std::string_view vendor, bool besideLibraryAlone) {
  const std::string file = ModuleFileName(vendor);
  Dl_info library{};
  dladdr(dlsym(RTLD_DEFAULT, "RunScript"), &library);
  const auto folder = std::filesystem::path(library.dli_fname).parent_path();
  std::vector<std::string> places = {folder / file, folder / "orvane" / file};
  if (!besideLibraryAlone) places.insert(places.begin(), file);
  std::string message = "not found";
  for (const std::string& place : places) {
    if (void* const module = dlopen(place.c_str(), RTLD_NOW | RTLD_LOCAL)) {
      link_map* found = nullptr;
      dlinfo(module, RTLD_DI_LINKMAP, &found);
      return {module, found->l_name};
    }
    const std::string said = dlerror();
    if (!said.starts_with(place + ": cannot open shared object file")) message = said;
  }
  return {nullptr, message};
}

void* ModuleFunction(void* module, const char* name) { return dlsym(module, name); }

bool LoadedModuleExports(std::string_view vendor, const char* function) {
  const std::string fileName = ModuleFileName(vendor);
  void* const module = dlopen(fileName.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NOLOAD);
  if (module == nullptr) return false;
  const bool found = dlsym(module, function) != nullptr;
  dlclose(module);
  return found;
}

std::string ToLibrary(const std::string& name) { return name; }
std::string FromLibrary(std::string_view name) { return std::string(name); }

}  // namespace host
