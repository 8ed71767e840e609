#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace orvane::platform {

// Reads a regular file of the current folder from its start, octet by octet as stored. The name is
// ASCII. The object is empty if the file cannot be opened, or is a folder, a pipe or a device.
class InputFile {
 public:
  explicit InputFile(const std::string& name);
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;
  ~InputFile();

  explicit operator bool() const { return handle_ != kNone; }

  // Reads up to size octets. 0 at the end of the file, and after a failed read.
  std::size_t Read(char* area, std::size_t size);

  bool Failed() const { return failed_; }

 private:
  static constexpr std::intptr_t kNone = -1;

  std::intptr_t handle_ = kNone;
  bool failed_ = false;
};

}  // namespace orvane::platform
