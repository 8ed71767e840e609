#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "host/platform.h"

namespace host {

void OpenStandardDescriptors() {
  for (int descriptor = 0; descriptor < 3; ++descriptor) {
    if (fcntl(descriptor, F_GETFD) >= 0) continue;
    // Takes the lowest number that is free: this one.
    open("/dev/null", descriptor == 0 ? O_WRONLY : O_RDONLY);
  }
}

int OpenFile(const std::string& name) { return open(name.c_str(), O_RDONLY | O_CLOEXEC); }

void CloseFile(int descriptor) { close(descriptor); }

std::ptrdiff_t ReadSome(int descriptor, char* area, size_t size) {
  std::ptrdiff_t count = 0;
  do {
    count = read(descriptor, area, size);
  } while (count < 0 && errno == EINTR);
  return count;
}

std::ptrdiff_t WriteSome(int descriptor, std::string_view text) {
  std::ptrdiff_t count = 0;
  do {
    count = write(descriptor, text.data(), text.size());
  } while (count < 0 && errno == EINTR);
  return count;
}

}  // namespace host
