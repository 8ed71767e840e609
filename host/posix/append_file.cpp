#include "host/append_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "host/failure.h"
#include "host/platform.h"
#include "host/text.h"

namespace host {
namespace {

constexpr int kTries = 50;
constexpr unsigned kBetweenTries = 100'000;  // microseconds

// Makes the file's name survive a power cut too.
void FlushFolder(const std::string& name) {
  const auto folder = std::filesystem::path(name).parent_path();
  const int descriptor =
      open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  fsync(descriptor);
  close(descriptor);
}

}  // namespace

// Worker processes inherit the descriptor and with it the lock. So nobody else gets the file while
// a worker of a killed process is still running.
AppendFile::AppendFile(const std::string& name)
    : name_(name), descriptor_(open(name.c_str(), O_RDWR | O_CREAT | O_APPEND, 0666)) {
  if (descriptor_ < 0) Fail("open");
  for (int tries = 0; flock(descriptor_, LOCK_EX | LOCK_NB) != 0; ++tries) {
    if (errno == EWOULDBLOCK && tries < kTries) {
      usleep(kBetweenTries);
      continue;
    }
    const bool taken = errno == EWOULDBLOCK;
    close(descriptor_);
    if (taken) throw Failure(kFileFault, Printable(name_) + ": another process is writing it");
    Fail("lock");
  }
  FlushFolder(name);
}

AppendFile::~AppendFile() { close(descriptor_); }

void AppendFile::Fail(const std::string& what) const {
  throw Failure(kFileFault, "can't " + what + ' ' + Printable(name_) + ": " +
                                std::generic_category().message(errno));
}

void AppendFile::Cut(size_t size) {
  if (ftruncate(descriptor_, static_cast<off_t>(size)) != 0) Fail("cut");
}

void AppendFile::Append(std::string_view text) {
  while (!text.empty()) {
    const std::ptrdiff_t count = WriteSome(descriptor_, text);
    if (count < 0) Fail("write");
    text.remove_prefix(static_cast<size_t>(count));
  }
}

void AppendFile::Flush() {
  if (fdatasync(descriptor_) != 0) Fail("write");
}

}  // namespace host
