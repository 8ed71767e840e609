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
// libwinscard.so, looked for as the system does and then in the folder of this library. A library
// of that name which the process has loaded already is the one that is found.
Module LoadModule(const char* fileName);

// Loads a library of that name from the folder of this library and from nowhere else. A library
// that was loaded through a link has two: the link's, which comes first, and, but on Windows, that
// of the file which the link leads to.
Module LoadModuleFromOwnFolder(const char* fileName);

}  // namespace orvane::platform
