#include "platform/library.h"

#include <cstring>

namespace orvane::platform {

void BindEntryPoints(const Module& module, std::span<const EntryPoint> names, void* table) {
  for (const EntryPoint& entry : names) {
    void* const address = module.Find(entry.name);
    std::memcpy(static_cast<char*>(table) + entry.offset, &address, sizeof address);
  }
}

}  // namespace orvane::platform
