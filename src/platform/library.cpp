#include "platform/library.h"

namespace orvane::platform {

void Library::Bind() {
  if (m_module) return;
  m_module = m_load(m_fileName);
  for (Name* name = m_names; name != nullptr; name = name->m_next) {
    name->m_address = m_module.Find(name->m_name);
  }
}

}  // namespace orvane::platform
