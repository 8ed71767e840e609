#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace host {

// A file that grows at its end alone and that one process at a time writes. Systems differ in it.
class AppendFile {
 public:
  // Opens or makes the file, and keeps what is in it. Waits some seconds for a process that writes
  // it. Throws Failure (kFileFault).
  explicit AppendFile(const std::string& name);
  AppendFile(const AppendFile&) = delete;
  AppendFile& operator=(const AppendFile&) = delete;
  ~AppendFile();

  // Cuts the file to its first octets. Throws Failure (kFileFault).
  void Cut(size_t size);

  // Throws Failure (kFileFault).
  void Append(std::string_view text);

  // Has what was appended outlive a power cut. Throws Failure (kFileFault).
  void Flush();

 private:
  [[noreturn]] void Fail(const std::string& what) const;

  std::string name_;
  int descriptor_;
};

}  // namespace host
