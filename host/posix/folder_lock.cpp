#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

#include "host/platform.h"

namespace host {

FolderLock::FolderLock() : handle_(open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
  while (flock(static_cast<int>(handle_), LOCK_EX) != 0 && errno == EINTR) continue;
}

FolderLock::~FolderLock() { close(static_cast<int>(handle_)); }

}  // namespace host
