#pragma once

#include <utility>

#include "platform/module.h"

namespace orvane::platform {

// A dynamic library that is bound on first use. A derived class has a member EntryPoint for each
// name that it looks up:
//
//   struct Reader : platform::Library {
//     Reader() : Library("reader.dll") {}
//     EntryPoint<int(int port)> OpenPort{*this, "OpenPort"};
//   };
class Library {
 public:
  explicit Library(const char* fileName, Module (*load)(const char*) = LoadModule)
      : m_fileName(fileName), m_load(load) {}
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  // Loads the library and looks up every name, unless that is done already. If the load failed, the
  // next call tries again.
  void Bind();

 protected:
  class Name {
   public:
    Name(Library& library, const char* name)
        : m_name(name), m_next(std::exchange(library.m_names, this)) {}
    Name(const Name&) = delete;
    Name& operator=(const Name&) = delete;

   protected:
    void* m_address = nullptr;

   private:
    friend Library;
    const char* const m_name;
    Name* const m_next;
  };

  // The function or data under a name. Null while the library is not bound, and if the library has
  // no such name: test it before each use.
  template <typename Target>
  class EntryPoint : public Name {
   public:
    using Name::Name;
    operator Target*() const { return reinterpret_cast<Target*>(m_address); }
  };

 private:
  const char* const m_fileName;
  Module (*const m_load)(const char*);
  Name* m_names = nullptr;
  Module m_module;
};

}  // namespace orvane::platform
