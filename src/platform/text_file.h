#pragma once

#include <cstdint>
#include <string_view>

namespace orvane::platform {

// A text file that is open for writing at its end. It is created if it is missing and never cut.
// A line feed is stored as the platform's line end.
class TextFile {
 public:
  // If the file cannot be opened, nothing is written to it later.
  explicit TextFile(const char* path);
  TextFile(const TextFile&) = delete;
  TextFile& operator=(const TextFile&) = delete;
  ~TextFile();

  // Writes what the system takes: a failure is not reported. The text is written in one step, so
  // that it stays whole when other processes append as well, unless Windows lacks memory to store
  // its line ends.
  void Append(std::string_view text);

 private:
  static constexpr std::intptr_t kNone = -1;

  std::intptr_t file_ = kNone;
};

}  // namespace orvane::platform
