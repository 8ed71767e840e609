#include "platform/replace_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

namespace orvane::platform {
namespace {

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&&) = delete;
  ~Descriptor() {
    if (*this) close(number_);
  }

  explicit operator bool() const { return number_ >= 0; }
  int Number() const { return number_; }

 private:
  int number_;
};

// Where a symbolic link leads in the end, whether or not a file is there.
std::string LinkTarget(std::filesystem::path path) {
  constexpr int kMostLinks = 40;
  for (int links = 0; links < kMostLinks; ++links) {
    std::error_code error;
    const auto next = std::filesystem::read_symlink(path, error);
    if (error) break;
    path = path.parent_path() / next;
  }
  return path.string();
}

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

bool HasPermissionsOf(const Descriptor& file, const struct stat& old) {
  struct stat own;
  if (fstat(file.Number(), &own) != 0) return false;
  const bool sameOwner = own.st_uid == old.st_uid && own.st_gid == old.st_gid;
  return (sameOwner || fchown(file.Number(), old.st_uid, old.st_gid) == 0) &&
         fchmod(file.Number(), old.st_mode & 07777) == 0;
}

// Makes a file that was not there, beside the one at this path. Sets `name`.
Descriptor CreateBeside(const std::string& path, std::string& name) {
  // Other processes, even with the same number on another machine, may be at the same work.
  constexpr int kMostNames = 1000;
  for (int i = 0; i < kMostNames; ++i) {
    name = path + "." + std::to_string(getpid() + i) + ".new";
    Descriptor file(open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (file || errno != EEXIST) return file;
  }
  return Descriptor(-1);
}

enum class Replacement { kDone, kImpossible, kFailed };

Replacement ReplaceAtOnce(const std::string& path, const struct stat* old,
                          std::string_view octets) {
  std::string name;
  const Descriptor file = CreateBeside(path, name);
  if (!file) return Replacement::kImpossible;
  Replacement outcome = Replacement::kImpossible;
  if (old == nullptr || HasPermissionsOf(file, *old)) {
    if (!Write(file, octets) || fsync(file.Number()) != 0) {
      outcome = Replacement::kFailed;
    } else if (rename(name.c_str(), path.c_str()) == 0) {
      return Replacement::kDone;
    }
  }
  unlink(name.c_str());
  return outcome;
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

bool ReplaceFileContents(const std::string& path, std::string_view octets) {
  const std::string target = LinkTarget(path);
  const Descriptor old(open(target.c_str(), O_WRONLY | O_CLOEXEC));
  if (!old) {
    return errno == ENOENT && ReplaceAtOnce(target, nullptr, octets) == Replacement::kDone;
  }
  struct stat status;
  if (fstat(old.Number(), &status) != 0) return false;
  if (!S_ISREG(status.st_mode)) return Write(old, octets);
  const Replacement outcome = ReplaceAtOnce(target, &status, octets);
  return outcome == Replacement::kDone ||
         (outcome == Replacement::kImpossible && Overwrite(old, status.st_size, octets));
}

}  // namespace orvane::platform
