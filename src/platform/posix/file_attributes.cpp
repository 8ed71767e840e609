#include "file_attributes.h"

#include <sys/stat.h>
#include <sys/xattr.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>
#include <string>

namespace orvane::platform {
namespace {

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
  // The folder may have given it a list.
  return hasList || fremovexattr(file.Number(), kAccessList) == 0 || errno == ENODATA ||
         errno == ENOTSUP;
}

}  // namespace

bool TakeAttributes(const Descriptor& file, const Descriptor& other) {
  struct stat own, status;
  if (fstat(file.Number(), &own) != 0 || fstat(other.Number(), &status) != 0) return false;
  const bool sameOwner = own.st_uid == status.st_uid && own.st_gid == status.st_gid;
  return (sameOwner || fchown(file.Number(), status.st_uid, status.st_gid) == 0) &&
         TakeExtendedAttributes(file, other) && fchmod(file.Number(), status.st_mode & 0777) == 0;
}

}  // namespace orvane::platform
