#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <string>
#include <utility>

namespace orvane::platform {

// Owns a file descriptor, or none, and closes it.
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

// A name in an open folder. It stays valid when the folder is moved. Without a folder it names
// nothing.
struct Place {
  Descriptor folder;
  std::string name;
};

// The name in the current folder.
Place PlaceHere(const std::string& name);

// Where an open file lies, with all links followed. `name` is the one under which it was opened.
Place PlaceOf(const Descriptor& file, const std::string& name);

// A new file NAME.NUMBER.new beside the file NAME. The destructor removes it, unless it has
// replaced NAME. It is locked while in use: one without a lock was left by a process that died.
class NewFile {
 public:
  NewFile(const Place& place, mode_t mode);
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  ~NewFile();

  // Empty if the file could not be made.
  const Descriptor& File() const { return file_; }

  bool TakeThePlace();

 private:
  const Place& place_;
  std::string name_;
  Descriptor file_;
};

// Removes the new files beside a file that dead processes left.
void RemoveDeadNewFiles(const Place& place);

}  // namespace orvane::platform
