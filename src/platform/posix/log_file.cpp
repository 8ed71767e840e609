#include "platform/log_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <mutex>

#include "write_signals.h"

namespace orvane::platform {
namespace {

constinit std::mutex LogMutex;

}  // namespace

LogFile::LogFile(const char* path) {
  LogMutex.lock();
  file_ = open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
}

LogFile::~LogFile() {
  if (file_ != kNone) close(static_cast<int>(file_));
  LogMutex.unlock();
}

void LogFile::Append(std::string_view text) {
  const WriteSignals blocked;
  while (file_ != kNone && !text.empty()) {
    const ssize_t written = write(static_cast<int>(file_), text.data(), text.size());
    if (written > 0) text.remove_prefix(static_cast<std::size_t>(written));
    if (written < 0 && errno != EINTR) return;
  }
}

}  // namespace orvane::platform
