#include "platform/library.h"

#include <cstring>

namespace orvane::platform {

void Library::Bind() {
  if (m_module) return;
  m_module = m_load(m_fileName);
  for (Name* name = m_names; name != nullptr; name = name->m_next) {
    name->m_address = m_module.Find(name->m_name);
  }
}

void BindEntryPoints(const Module& module, std::span<const EntryPoint> names, void* table) {
  for (const EntryPoint& entry : names) {
    void* const address = module.Find(entry.name);
    std::memcpy(static_cast<char*>(table) + entry.offset, &address, sizeof address);
  }
}

}  // namespace orvane::platform
