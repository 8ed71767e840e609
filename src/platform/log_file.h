#pragma once

#include <cstdint>
#include <string_view>

namespace orvane::platform {

// A text file that is open for writing at its end, under LogMutex: the one lock of the process
// around log writes, which each of these objects holds as long as it lives. The file is created if
// it is missing and never cut. A line feed is stored as the platform's line end.
class LogFile {
 public:
  // Waits for the lock without a time limit. If the file cannot be opened, nothing is written.
  explicit LogFile(const char* path);
  LogFile(const LogFile&) = delete;
  LogFile& operator=(const LogFile&) = delete;
  ~LogFile();

  // Writes what the system takes: a failure is not reported. The text is written in one step, so
  // that it stays whole when other processes append as well, unless Windows lacks memory to store
  // its line ends.
  void Append(std::string_view text);

 private:
  static constexpr std::intptr_t kNone = -1;

  std::intptr_t file_ = kNone;
};

}  // namespace orvane::platform
