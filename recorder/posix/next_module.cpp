#include "recorder/next_module.h"

#include <dlfcn.h>
#include <link.h>

#include <cstdlib>
#include <string_view>
#include <vector>

#include "recordings/process.h"

namespace recorder {
namespace {

namespace fs = std::filesystem;

// The files of all loaded modules.
std::vector<fs::path> LoadedFiles() {
  std::vector<fs::path> files;
  const auto add = [](dl_phdr_info* object, std::size_t, void* data) {
    static_cast<std::vector<fs::path>*>(data)->emplace_back(object->dlpi_name);
    return 0;
  };
  dl_iterate_phdr(add, &files);
  return files;
}

fs::path OwnFile() {
  Dl_info self{};
  dladdr(reinterpret_cast<void*>(&OwnFile), &self);
  return self.dli_fname;
}

std::vector<fs::path> LibraryPath() {
  std::vector<fs::path> folders;
  const char* const variable = std::getenv("LD_LIBRARY_PATH");
  std::string_view rest = variable != nullptr ? variable : "";
  while (!rest.empty()) {
    const std::size_t end = rest.find_first_of(":;");
    const std::string_view folder = rest.substr(0, end);
    if (!folder.empty()) folders.emplace_back(folder);
    rest.remove_prefix(end == rest.npos ? rest.size() : end + 1);
  }
  return folders;
}

// The places where the library may be, the likeliest first.
std::vector<fs::path> Places(const fs::path& own) {
  const fs::path name = own.filename();
  std::vector<fs::path> places;
  const std::vector<fs::path> loaded = LoadedFiles();
  for (const fs::path& file : loaded) {
    if (file.filename() == name) places.push_back(file);
  }
  for (const fs::path& folder : LibraryPath()) places.push_back(folder / name);
  std::vector<fs::path> folders;
  for (const fs::path& file : loaded) {
    if (file.filename().string().starts_with("liborvane.so")) folders.push_back(file.parent_path());
  }
  folders.push_back(own.parent_path().parent_path());
  folders.push_back(folders.back().parent_path());
  for (const fs::path& folder : folders) {
    places.push_back(folder / name);
    places.push_back(folder / "orvane" / name);
  }
  return places;
}

}  // namespace

void* LoadNextModule() {
  if (const auto named = recordings::EnvironmentPath("ORVANE_RECORD_NEXT")) {
    return dlopen(named->c_str(), RTLD_NOW | RTLD_LOCAL);
  }
  const fs::path own = OwnFile();
  for (const fs::path& place : Places(own)) {
    std::error_code error;
    if (!fs::is_regular_file(place, error) || fs::equivalent(place, own, error)) continue;
    if (void* const module = dlopen(place.c_str(), RTLD_NOW | RTLD_LOCAL)) return module;
  }
  return nullptr;
}

void* FindFunction(void* module, const char* name) { return dlsym(module, name); }

std::string ToUtf8(const char* name) { return name; }

}  // namespace recorder
