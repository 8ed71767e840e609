#include "recordings/recording_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace recordings {
namespace {

std::string Reason() { return std::generic_category().message(errno); }

bool IsRegularFile(int descriptor) {
  struct stat status;
  return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

RecordingFile::~RecordingFile() {
  if (handle_ >= 0) close(static_cast<int>(handle_));
}

std::string RecordingFile::Open(const std::filesystem::path& file, bool secret) {
  const int descriptor = open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOCTTY,
                              secret ? 0600 : 0666);
  if (descriptor < 0) return Reason();
  handle_ = descriptor;
  // Some file systems have no locks.
  if (flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
    return "another session is being recorded to it";
  }
  // A file that was there before may be one that others read.
  if (secret && IsRegularFile(descriptor) && fchmod(descriptor, 0600) != 0) return Reason();
  // A file without a length, such as a pipe, refuses this.
  if (ftruncate(descriptor, 0) != 0 && errno != EINVAL) return Reason();
  return "";
}

std::string RecordingFile::Append(std::string_view line) {
  std::string whole(line);
  whole += '\n';
  for (std::string_view rest = whole; !rest.empty();) {
    const ssize_t written = write(static_cast<int>(handle_), rest.data(), rest.size());
    if (written < 0 && errno != EINTR) return Reason();
    if (written > 0) rest.remove_prefix(static_cast<size_t>(written));
  }
  return "";
}

}  // namespace recordings
