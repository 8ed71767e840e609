#pragma once

#include <utility>

namespace orvane::platform {

// A dynamic library, loaded for as long as this object holds it. Empty when there is none.
class Module {
 public:
  Module() = default;
  explicit Module(void* handle) : handle_(handle) {}
  Module(Module&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Module& operator=(Module&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~Module();

  explicit operator bool() const { return handle_ != nullptr; }

  // The function or data under this name; null if the library has none.
  void* Find(const char* name) const;

 private:
  void* handle_ = nullptr;
};

// Loads a library by its bare Windows name, such as "winscard.dll"; on POSIX that means
// libwinscard.so. The first one counts that is found
//  - among the libraries of the process, by its own name or that of its file,
//  - where the system looks for libraries,
//  - on Windows, in folders that the host has named to AddDllDirectory,
//  - in the folder of this library,
//  - on POSIX, in orvane/ below that folder, where our own modules are installed.
Module LoadModule(const char* fileName);

// The same for a module that is given secrets: on Windows the current folder and PATH are left out.
Module LoadOwnModule(const char* fileName);

// Loads a library of that name from the folder of this library alone. If this library was loaded
// through a link, the folder is that of the link; on POSIX that of its file comes second.
Module LoadModuleFromOwnFolder(const char* fileName);

}  // namespace orvane::platform
