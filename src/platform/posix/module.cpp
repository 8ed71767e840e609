#include "platform/module.h"

#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>

namespace orvane::platform {
namespace {

// NAME.dll is libNAME.so here.
std::string SharedObjectName(std::string_view fileName) {
  const auto stem = fileName.substr(0, fileName.rfind('.'));
  return "lib" + std::string(stem) + ".so";
}

// The name that the loader has for this library; the link's name if it was loaded through one.
const char* OwnName() {
  Dl_info self{};
  return dladdr(reinterpret_cast<void*>(&OwnName), &self) != 0 ? self.dli_fname : nullptr;
}

// Found when the library is loaded: a relative name means nothing after the process has changed its
// folder. Null if it cannot be found; never released.
const char* const kOwnName = OwnName();
const char* const kOwnFile = kOwnName != nullptr ? realpath(kOwnName, nullptr) : nullptr;
const char* const kFolderAtStart =
    kOwnName != nullptr && *kOwnName != '/' ? getcwd(nullptr, 0) : nullptr;

// The folder with its last slash.
std::string FolderOf(std::string_view file) {
  return std::string(file.substr(0, file.rfind('/') + 1));
}

// The folder of the name by which this library was loaded; empty if it is not known.
std::string FolderOfOwnName() {
  if (kOwnName == nullptr) return {};
  if (*kOwnName == '/') return FolderOf(kOwnName);
  return kFolderAtStart != nullptr ? kFolderAtStart + ("/" + FolderOf(kOwnName)) : std::string();
}

Module Open(const std::string& path, int besides = 0) {
  return Module(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | besides));
}

Module OpenIn(const std::string& folder, const std::string& name) {
  return folder.empty() ? Module() : Open(folder + name);
}

// dlopen recognises a loaded library only by its SONAME, if it has one, and by its path. This finds
// it by its file's name.
Module FindLoaded(const std::string& name) {
  struct Search {
    const std::string& name;
    std::string path;
  } search{name, {}};
  const auto look = [](dl_phdr_info* object, std::size_t, void* data) {
    auto& [wanted, path] = *static_cast<Search*>(data);
    const std::string_view file = object->dlpi_name;
    if (file.substr(file.rfind('/') + 1) != wanted) return 0;
    path = file;
    return 1;
  };
  dl_iterate_phdr(look, &search);
  return search.path.empty() ? Module() : Open(search.path, RTLD_NOLOAD);
}

Module OpenInOwnFolder(const std::string& name) {
  Module module = OpenIn(FolderOfOwnName(), name);
  // A link to the library may be in another folder than the files that belong to the library.
  if (module || kOwnFile == nullptr) return module;
  return OpenIn(FolderOf(kOwnFile), name);
}

}  // namespace

Module::~Module() {
  if (handle_ != nullptr) dlclose(handle_);
}

void* Module::Find(const char* name) const {
  return handle_ != nullptr ? dlsym(handle_, name) : nullptr;
}

Module LoadModule(const char* fileName) {
  const std::string name = SharedObjectName(fileName);
  Module module = FindLoaded(name);
  if (!module) module = Open(name);
  if (!module) module = OpenInOwnFolder(name);
  return module ? std::move(module) : OpenInOwnFolder("orvane/" + name);
}

Module LoadOwnModule(const char* fileName) { return LoadModule(fileName); }

Module LoadModuleFromOwnFolder(const char* fileName) {
  return OpenInOwnFolder(SharedObjectName(fileName));
}

}  // namespace orvane::platform
