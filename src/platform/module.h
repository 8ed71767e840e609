#pragma once

namespace orvane::platform {

// A dynamic library, loaded for as long as this object holds it. Empty when there is none.
class Module {
 public:
  Module() = default;
  explicit Module(void* handle) : handle_(handle) {}
  Module(Module&& other) noexcept;
  Module& operator=(Module&& other) noexcept;
  ~Module();

  explicit operator bool() const { return handle_ != nullptr; }

  // The function or data under this name; null if the library has none.
  void* Find(const char* name) const;

 private:
  void* handle_ = nullptr;
};

// Loads a library by its bare Windows name, such as "winscard.dll". Elsewhere that stands for
// libwinscard.so. One that the process has loaded already, by its own name or its file's, is the
// one that is found; else it is looked for as the system does, then in folders that the host has
// named to the system for this, then in the folder of this library.
Module LoadModule(const char* fileName);

// Likewise for a module that is given secrets: on Windows neither the current folder nor PATH is
// looked in.
Module LoadOwnModule(const char* fileName);

// Loads a library of that name from the folder that this library was loaded from and from nowhere
// else. A library that was loaded through a link has two: the link's, which comes first, and, but
// on Windows, that of the file which the link leads to.
Module LoadModuleFromOwnFolder(const char* fileName);

}  // namespace orvane::platform
