#include "recordings/process.h"

#include <unistd.h>

#include <cstdlib>

namespace recordings {

uint32_t ProcessNumber() { return static_cast<uint32_t>(getpid()); }

std::optional<std::filesystem::path> EnvironmentPath(const char* name) {
  const char* const value = std::getenv(name);
  if (value == nullptr || *value == '\0') return std::nullopt;
  return std::filesystem::path(value);
}

}  // namespace recordings
