#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>

#include "recordings/event.h"
#include "recordings/recording_file.h"

namespace recordings {

using Steady = std::chrono::steady_clock;

// Sets the times of an event.
void SetTimes(Event& event, Steady::time_point origin, Steady::time_point begin,
              Steady::time_point end);

// A session that is being recorded. Any thread may call it. After a line could not be written, no
// further line is.
class SessionLog {
 public:
  // In the file's name %p becomes the number of this process.
  SessionLog(std::filesystem::path file, bool showSecrets)
      : name_(std::move(file)), showSecrets_(showSecrets) {}

  // Opens the file and writes its first line, unless that is done already.
  void Begin();

  void Append(std::string_view line);

  // The empty text, or why the file does not hold the whole session.
  std::string Trouble() const;

  // Numbers readers from 1 as they are opened.
  int64_t NextReader() { return ++readers_; }

  Steady::time_point Origin() const { return origin_; }
  bool ShowsSecrets() const { return showSecrets_; }

 private:
  void BeginLocked();

  mutable std::mutex mutex_;
  const std::filesystem::path name_;
  const bool showSecrets_;
  const Steady::time_point origin_ = Steady::now();
  const std::chrono::system_clock::time_point begun_ = std::chrono::system_clock::now();
  std::atomic<int64_t> readers_ = 0;
  bool open_ = false;
  RecordingFile file_;
  std::string trouble_;
};

}  // namespace recordings
