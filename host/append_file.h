#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace host {

// A file that only grows at its end and that one process at a time writes.
class AppendFile {
 public:
  // Opens or creates the file and keeps its content. Waits some seconds while another process
  // writes it. Throws Failure (kFileFault).
  explicit AppendFile(const std::string& name);
  AppendFile(const AppendFile&) = delete;
  AppendFile& operator=(const AppendFile&) = delete;
  ~AppendFile();

  // Keeps the first `size` octets and cuts the rest. Throws Failure (kFileFault).
  void Cut(size_t size);

  // Throws Failure (kFileFault).
  void Append(std::string_view text);

  // What was appended then survives a power cut. Throws Failure (kFileFault).
  void Flush();

 private:
  [[noreturn]] void Fail(const std::string& what) const;

  std::string name_;
  int descriptor_;
};

}  // namespace host
