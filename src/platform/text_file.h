#pragma once

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

  // Writes what the system takes: a failure is not reported.
  void Append(std::string_view text);

 private:
  int descriptor_ = -1;
};

}  // namespace orvane::platform
