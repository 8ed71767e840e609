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

// A file's name in its folder; both stay right when the folder is moved. Without a folder: nowhere.
struct Place {
  Descriptor folder;
  std::string name;
};

// The name in the current folder.
Place PlaceHere(const std::string& name);

// Where the open file lies that was opened under this name, once all links are followed.
Place PlaceOf(const Descriptor& file, const std::string& name);

// A file NAME.NUMBER.new that was not there, beside another one. It goes again, unless it takes the
// other one's place. It is locked: unlocked ones are those of processes that died.
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
