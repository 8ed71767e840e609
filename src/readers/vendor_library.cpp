#include "readers/vendor_library.h"

#include <cstring>

namespace orvane {

void BindEntryPoints(const platform::Module& module, std::span<const EntryPoint> names,
                     void* table) {
  for (const EntryPoint& entry : names) {
    void* const address = module.Find(entry.name);
    std::memcpy(static_cast<char*>(table) + entry.offset, &address, sizeof address);
  }
}

}  // namespace orvane
