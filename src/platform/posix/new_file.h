#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <string>
#include <utility>

namespace orvane::platform {

// A file descriptor, or none, which is closed in the end.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~Descriptor() {
    if (*this) close(number_);
  }

  explicit operator bool() const { return number_ >= 0; }
  int Number() const { return number_; }

 private:
  int number_;
};

// A name in an open folder. It stays right when the folder is moved. Without a folder it is
// nowhere.
struct Place {
  Descriptor folder;
  std::string name;
};

// The name in the current folder.
Place PlaceHere(const std::string& name);

// Where an open file lies, with all links followed. It was opened under this name.
Place PlaceOf(const Descriptor& file, const std::string& name);

// A new file NAME.NUMBER.new beside the file NAME. It is removed in the end, unless it has taken
// the place of NAME. It is locked; one without a lock was left by a process that died.
class NewFile {
 public:
  NewFile(const Place& place, mode_t mode);
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  ~NewFile();

  // None if it could not be made.
  const Descriptor& File() const { return file_; }

  bool TakeThePlace();

 private:
  const Place& place_;
  std::string name_;
  Descriptor file_;
};

// Removes what dead processes left beside a file.
void RemoveDeadNewFiles(const Place& place);

}  // namespace orvane::platform
