#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "host/platform.h"

namespace host {
namespace {

std::array<bool, 3> wasClosed{};

bool WasClosed(int descriptor) {
  if (descriptor >= 3 || !wasClosed[static_cast<size_t>(descriptor)]) return false;
  errno = EBADF;
  return true;
}

}  // namespace

void OpenStandardDescriptors() {
  for (int descriptor = 0; descriptor < 3; ++descriptor) {
    if (fcntl(descriptor, F_GETFD) >= 0) continue;
    wasClosed[static_cast<size_t>(descriptor)] = true;
    open("/dev/null", O_RDWR);  // takes the lowest number that is free: this one
  }
}

int OpenFile(const std::string& name) { return open(name.c_str(), O_RDONLY | O_CLOEXEC); }

void CloseFile(int descriptor) { close(descriptor); }

std::ptrdiff_t ReadSome(int descriptor, char* area, size_t size) {
  if (WasClosed(descriptor)) return -1;
  std::ptrdiff_t count = 0;
  do {
    count = read(descriptor, area, size);
  } while (count < 0 && errno == EINTR);
  return count;
}

std::ptrdiff_t WriteSome(int descriptor, std::string_view text) {
  if (WasClosed(descriptor)) return -1;
  std::ptrdiff_t count = 0;
  do {
    count = write(descriptor, text.data(), text.size());
  } while (count < 0 && errno == EINTR);
  return count;
}

}  // namespace host
