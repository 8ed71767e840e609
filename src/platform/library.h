#pragma once

#include <cstddef>
#include <span>
#include <utility>

#include "platform/module.h"

namespace orvane::platform {

// A dynamic library that is bound on first use. What derives from it has a member EntryPoint for
// every name that is looked up in it:
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

  // Loads the library and looks every name up, unless that has been done. A library that could
  // not be loaded is tried again.
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

  // The function or data under a name. Null while the library is not bound, and where it has no
  // such name, so each is tested before it is used.
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

// One line of a table: a name in the library and the pointer's place in the struct of pointers.
struct EntryPoint {
  const char* name;
  std::size_t offset;
};

#define ORVANE_ENTRY_POINT(Table, name) \
  { #name, offsetof(Table, name) }

// Sets every pointer that the names stand for; null where the module has no such name.
void BindEntryPoints(const Module& module, std::span<const EntryPoint> names, void* table);

// A dynamic library that is bound on first use, and the pointers into it. Table is a struct of
// typed pointers, null by default, with two static members besides: the name kFileName and the
// function EntryPoints, which gives the table's lines. All pointers are null while the library is
// not bound, and a pointer whose name the library lacks stays null, so each is tested before it is
// used.
template <typename Table>
class TableLibrary {
 public:
  // Loads the library and looks every name up, unless that has been done. A library that could
  // not be loaded is tried again.
  void Bind(Module (*load)(const char*) = LoadModule) {
    if (m_module) return;
    m_table = {};
    m_module = load(Table::kFileName);
    if (m_module) BindEntryPoints(m_module, Table::EntryPoints(), &m_table);
  }

  const Table* operator->() const { return &m_table; }
  const Table& operator*() const { return m_table; }

 private:
  Module m_module;
  Table m_table{};
};

}  // namespace orvane::platform
