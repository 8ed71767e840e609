#include "platform/input_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace orvane::platform {

InputFile::InputFile(const std::string& name) {
  const int descriptor = open(name.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (descriptor < 0) return;
  struct stat status;
  if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) {
    handle_ = descriptor;
  } else {
    close(descriptor);
  }
}

InputFile::~InputFile() {
  if (*this) close(static_cast<int>(handle_));
}

std::size_t InputFile::Read(char* area, std::size_t size) {
  ssize_t result = -1;
  errno = EINTR;
  while (!failed_ && result < 0 && errno == EINTR) {
    result = read(static_cast<int>(handle_), area, size);
  }
  failed_ = result < 0;
  return failed_ ? 0 : static_cast<std::size_t>(result);
}

}  // namespace orvane::platform
