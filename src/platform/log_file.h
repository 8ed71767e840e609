#pragma once

#include <cstdint>
#include <string_view>

namespace orvane::platform {

// A text file, open for appending. Each object holds LogMutex, the one lock of the process around
// log writes, for its whole life. A missing file is created; an existing one is never cut. A line
// feed is stored as the platform's line end.
class LogFile {
 public:
  // Waits for the lock without a time limit. If the file cannot be opened, Append does nothing.
  explicit LogFile(const char* path);
  LogFile(const LogFile&) = delete;
  LogFile& operator=(const LogFile&) = delete;
  ~LogFile();

  // Writes what the system takes; reports no failure. The text goes out in one step, so that it
  // stays whole while other processes append. Only if Windows lacks memory for its line ends does
  // it go out in pieces.
  void Append(std::string_view text);

 private:
  static constexpr std::intptr_t kNone = -1;

  std::intptr_t file_ = kNone;
};

}  // namespace orvane::platform
