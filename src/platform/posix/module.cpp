#include "platform/module.h"

#include <dlfcn.h>

#include <climits>
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

// The file of this library under the name that it was loaded by; a link's own name.
std::string OwnFile() {
  Dl_info self{};
  if (dladdr(reinterpret_cast<void*>(&OwnFile), &self) == 0 || self.dli_fname == nullptr) return {};
  return self.dli_fname;
}

// With its last slash. A bare name would be looked for everywhere.
std::string FolderOf(const std::string& file) {
  const auto slash = file.rfind('/');
  return slash == std::string::npos ? "./" : file.substr(0, slash + 1);
}

Module Open(const std::string& path) { return Module(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)); }

}  // namespace

Module::Module(Module&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}

Module& Module::operator=(Module&& other) noexcept {
  std::swap(handle_, other.handle_);
  return *this;
}

Module::~Module() {
  if (handle_ != nullptr) dlclose(handle_);
}

void* Module::Find(const char* name) const {
  return handle_ != nullptr ? dlsym(handle_, name) : nullptr;
}

Module LoadModule(const char* fileName) {
  Module module = Open(SharedObjectName(fileName));
  return module ? std::move(module) : LoadModuleFromOwnFolder(fileName);
}

Module LoadModuleFromOwnFolder(const char* fileName) {
  const std::string self = OwnFile(), name = SharedObjectName(fileName);
  Module module = Open(FolderOf(self) + name);
  // A link to the library may stand elsewhere than what belongs to it.
  char target[PATH_MAX];
  if (module || realpath(self.c_str(), target) == nullptr) return module;
  return Open(FolderOf(target) + name);
}

}  // namespace orvane::platform
