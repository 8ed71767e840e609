#include "platform/replace_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>

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

constexpr const char* kAccessList = "system.posix_acl_access";

bool IsForThisContent(const std::string& name) {
  const char* const names[] = {"security.capability", "security.evm", "security.ima"};
  return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

std::optional<std::string> Value(const Descriptor& file, const char* name) {
  const ssize_t size = fgetxattr(file.Number(), name, nullptr, 0);
  if (size < 0) return std::nullopt;
  std::string value(static_cast<std::size_t>(size), '\0');
  if (fgetxattr(file.Number(), name, value.data(), value.size()) != size) return std::nullopt;
  return value;
}

bool TakeAttribute(const Descriptor& file, const Descriptor& other, const char* name) {
  const auto value = Value(other, name);
  return value && (Value(file, name) == value ||
                   fsetxattr(file.Number(), name, value->data(), value->size(), 0) == 0);
}

bool TakeExtendedAttributes(const Descriptor& file, const Descriptor& other) {
  ssize_t size = flistxattr(other.Number(), nullptr, 0);
  if (size < 0) return errno == ENOTSUP;
  std::string names(static_cast<std::size_t>(size), '\0');
  size = flistxattr(other.Number(), names.data(), names.size());
  if (size < 0) return false;
  names.resize(static_cast<std::size_t>(size));
  bool hasList = false;
  for (std::size_t at = 0; at < names.size(); at += std::strlen(&names[at]) + 1) {
    const char* const name = &names[at];
    hasList = hasList || std::strcmp(name, kAccessList) == 0;
    if (!IsForThisContent(name) && !TakeAttribute(file, other, name)) return false;
  }
  // The new file may have inherited a list from its folder.
  return hasList || fremovexattr(file.Number(), kAccessList) == 0 || errno == ENODATA ||
         errno == ENOTSUP;
}

// Gives a file the owner, permissions, access-control list and extended attributes of another one,
// without setuid bits and attributes that vouch for the content. False if one is refused.
bool TakeAttributes(const Descriptor& file, const Descriptor& other) {
  struct stat own, status;
  if (fstat(file.Number(), &own) != 0 || fstat(other.Number(), &status) != 0) return false;
  const bool sameOwner = own.st_uid == status.st_uid && own.st_gid == status.st_gid;
  return (sameOwner || fchown(file.Number(), status.st_uid, status.st_gid) == 0) &&
         TakeExtendedAttributes(file, other) && fchmod(file.Number(), status.st_mode & 0777) == 0;
}

enum class Replacement { kDone, kImpossible, kFailed };

// Without an old file, the new one gets the permissions of any new file.
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
  // Writes the part beyond the old size first: a full disk then shows before old content is lost.
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
    old = Descriptor(open(name.c_str(), kFlags | O_CREAT, 0666));  // a link without a target
  }
  if (!old || fstat(old.Number(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
  const Replacement outcome = ReplaceAtOnce(PlaceOf(old, name), old, octets);
  return outcome == Replacement::kDone ||
         (outcome == Replacement::kImpossible && Overwrite(old, status.st_size, octets));
}

}  // namespace orvane::platform
