#include "platform/module.h"

#include <dlfcn.h>

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

std::string OwnFolder() {
  Dl_info self{};
  if (dladdr(reinterpret_cast<void*>(&OwnFolder), &self) == 0 || self.dli_fname == nullptr)
    return {};
  const std::string path = self.dli_fname;
  return path.substr(0, path.rfind('/') + 1);
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
  const std::string folder = OwnFolder();
  // A bare name would be looked for everywhere.
  return Open((folder.empty() ? "./" : folder) + SharedObjectName(fileName));
}

}  // namespace orvane::platform
