#include "new_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace orvane::platform {
namespace {

namespace fs = std::filesystem;

// True if the name in this folder, not followed as a link, belongs to the open file.
bool IsNameOf(const Descriptor& file, const Descriptor& folder, const char* name) {
  struct stat own, named;
  return fstat(file.Number(), &own) == 0 && S_ISREG(own.st_mode) &&
         fstatat(folder.Number(), name, &named, AT_SYMLINK_NOFOLLOW) == 0 &&
         own.st_dev == named.st_dev && own.st_ino == named.st_ino;
}

bool IsNewName(std::string_view name, std::string_view old) {
  constexpr std::string_view kEnd = ".new";
  if (!name.starts_with(old) || !name.ends_with(kEnd)) return false;
  name.remove_prefix(old.size());
  if (name.size() < kEnd.size() + 2 || name[0] != '.') return false;
  name = name.substr(1, name.size() - 1 - kEnd.size());
  return name.find_first_not_of("0123456789") == name.npos;
}

}  // namespace

Place PlaceHere(const std::string& name) {
  return {Descriptor(open(".", O_PATH | O_DIRECTORY | O_CLOEXEC)), name};
}

Place PlaceOf(const Descriptor& file, const std::string& name) {
  Place place = PlaceHere(name);
  if (IsNameOf(file, place.folder, name.c_str())) return place;
  std::error_code error;
  const fs::path path = fs::read_symlink("/proc/self/fd/" + std::to_string(file.Number()), error);
  place.folder = Descriptor(open(path.parent_path().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  place.name = path.filename().string();
  if (!IsNameOf(file, place.folder, place.name.c_str())) place.folder = Descriptor(-1);
  return place;
}

NewFile::NewFile(const Place& place, mode_t mode) : place_(place), file_(-1) {
  // Other processes may do the same at the same time, even one with the same number on another
  // machine.
  constexpr int kMostNames = 1000;
  constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
  for (int i = 0; i < kMostNames; ++i) {
    name_ = place.name + "." + std::to_string(getpid() + i) + ".new";
    file_ = Descriptor(openat(place.folder.Number(), name_.c_str(), kFlags, mode));
    if (!file_ && errno != EEXIST) return;
    if (!file_) continue;
    // Between creation and lock, another process may have taken the file for a dead process's.
    const bool lost = flock(file_.Number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    if (!lost && IsNameOf(file_, place.folder, name_.c_str())) return;
    file_ = Descriptor(-1);
  }
}

NewFile::~NewFile() {
  if (file_) unlinkat(place_.folder.Number(), name_.c_str(), 0);
}

bool NewFile::TakeThePlace() {
  const int folder = place_.folder.Number();
  if (renameat(folder, name_.c_str(), folder, place_.name.c_str()) != 0) return false;
  file_ = Descriptor(-1);
  return true;
}

void RemoveDeadNewFiles(const Place& place) {
  const Descriptor& folder = place.folder;
  const int number = openat(folder.Number(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  DIR* const entries = fdopendir(number);
  if (entries == nullptr) {
    const Descriptor closed(number);
    return;
  }
  // NOLINTNEXTLINE(concurrency-mt-unsafe): no other thread reads this stream
  while (const dirent* const entry = readdir(entries)) {
    constexpr int kFlags = O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    if (!IsNewName(entry->d_name, place.name)) continue;
    const Descriptor file(openat(folder.Number(), entry->d_name, kFlags));
    // Only the holder of the lock may remove a file, and only if the name still belongs to it.
    if (file && flock(file.Number(), LOCK_EX | LOCK_NB) == 0 &&
        IsNameOf(file, folder, entry->d_name)) {
      unlinkat(folder.Number(), entry->d_name, 0);
    }
  }
  closedir(entries);
}

}  // namespace orvane::platform
