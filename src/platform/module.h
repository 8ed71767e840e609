#pragma once

#include <utility>

namespace orvane::platform {

// A dynamic library, loaded as long as this object lives. Empty when there is none.
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
// libwinscard.so. Takes the first one that it finds
//  - among the libraries of the process, by its own name or that of its file,
//  - where the system looks for libraries,
//  - on Windows, in folders that the host has named to AddDllDirectory,
//  - in the folder of this library,
//  - on POSIX, in orvane/ below that folder, where our own modules are installed.
Module LoadModule(const char* fileName);

// The same for a module that gets secrets: on Windows without the current folder and PATH.
Module LoadOwnModule(const char* fileName);

// Loads a library of that name from this library's own folder alone. If this library was loaded
// through a link, that is the link's folder; on POSIX the folder of the real file comes second.
Module LoadModuleFromOwnFolder(const char* fileName);

}  // namespace orvane::platform
