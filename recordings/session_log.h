#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <string>
#include <string_view>

#include "recordings/event.h"
#include "recordings/recording_file.h"

namespace recordings {

using Steady = std::chrono::steady_clock;

// Sets the times of an event.
void SetTimes(Event& event, Steady::time_point origin, Steady::time_point begin,
              Steady::time_point end);

// A session that is being recorded. Any thread may append; once a line could not be written, no
// other one is.
class SessionLog {
 public:
  // Opens the file and writes its first line, unless there is trouble. %p in its name becomes the
  // number of this process.
  SessionLog(const std::filesystem::path& file, bool showSecrets);

  void Append(std::string_view line);

  // The empty text, or why not all of the session is in the file.
  std::string Trouble() const;

  // Readers are counted from 1 as they are opened.
  int64_t NextReader() { return ++readers_; }

  Steady::time_point Origin() const { return origin_; }
  bool ShowsSecrets() const { return showSecrets_; }

 private:
  mutable std::mutex mutex_;
  Steady::time_point origin_ = Steady::now();
  std::atomic<int64_t> readers_ = 0;
  bool showSecrets_;
  RecordingFile file_;
  std::string trouble_;
};

}  // namespace recordings
