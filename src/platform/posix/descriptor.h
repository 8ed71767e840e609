#pragma once

#include <unistd.h>

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

}  // namespace orvane::platform
