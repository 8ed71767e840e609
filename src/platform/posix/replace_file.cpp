#include "platform/replace_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "descriptor.h"
#include "file_attributes.h"
#include "new_file.h"
#include "write_signals.h"

namespace orvane::platform {
namespace {

bool Write(const Descriptor& file, std::string_view octets) {
  while (!octets.empty()) {
    const ssize_t count = write(file.Number(), octets.data(), octets.size());
    if (count >= 0) {
      octets.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      return false;
    }
  }
  return true;
}

bool WriteAt(const Descriptor& file, off_t place, std::string_view octets) {
  return lseek(file.Number(), place, SEEK_SET) == place && Write(file, octets);
}

enum class Replacement { kDone, kImpossible, kFailed };

// Without an old file, the new one has the permissions of any new file.
Replacement ReplaceAtOnce(const Place& place, const Descriptor& old, std::string_view octets) {
  RemoveDeadNewFiles(place);
  NewFile next(place, old ? 0600 : 0666);
  if (!next.File()) return Replacement::kImpossible;
  if (!Write(next.File(), octets)) return Replacement::kFailed;
  if (old && !TakeAttributes(next.File(), old)) return Replacement::kImpossible;
  if (fsync(next.File().Number()) != 0) return Replacement::kFailed;
  return next.TakeThePlace() ? Replacement::kDone : Replacement::kImpossible;
}

bool Overwrite(const Descriptor& file, off_t size, std::string_view octets) {
  // What the file grows by comes first: if the disk is full, this is where it shows.
  const auto kept = octets.substr(0, static_cast<std::size_t>(size));
  if (!WriteAt(file, size, octets.substr(kept.size()))) {
    [[maybe_unused]] const int ignored = ftruncate(file.Number(), size);
    return false;
  }
  return WriteAt(file, 0, kept) && ftruncate(file.Number(), static_cast<off_t>(octets.size())) == 0;
}

}  // namespace

bool ReplaceFileContents(const std::string& name, std::string_view octets) {
  const WriteSignals blocked;
  constexpr int kFlags = O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  Descriptor old(open(name.c_str(), kFlags));
  struct stat status;
  if (!old && errno == ENOENT) {
    if (lstat(name.c_str(), &status) != 0) {
      return ReplaceAtOnce(PlaceHere(name), old, octets) == Replacement::kDone;
    }
    old = Descriptor(open(name.c_str(), kFlags | O_CREAT, 0666));  // a link to no file yet
  }
  if (!old || fstat(old.Number(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
  const Replacement outcome = ReplaceAtOnce(PlaceOf(old, name), old, octets);
  return outcome == Replacement::kDone ||
         (outcome == Replacement::kImpossible && Overwrite(old, status.st_size, octets));
}

}  // namespace orvane::platform
