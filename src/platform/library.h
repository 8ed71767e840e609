#pragma once

#include <cstddef>
#include <span>

#include "platform/module.h"

namespace orvane::platform {

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
class Library {
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
