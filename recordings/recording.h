#pragma once

#include <filesystem>
#include <istream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "recordings/event.h"

namespace recordings {

// Why a file cannot be read as a recording. Line 0 means the file as a whole.
class Fault : public std::runtime_error {
 public:
  Fault(size_t line, const std::string& message) : std::runtime_error(message), line_(line) {}
  size_t Line() const { return line_; }

 private:
  size_t line_;
};

struct RecordedEvent : Event {
  size_t line = 0;  // counted from 1
};

struct Recording {
  std::vector<RecordedEvent> events;  // those of known types
  size_t cutLine = 0;                 // the last line, if it is cut off and left out; else 0
};

// Throws Fault.
Recording ReadRecording(const std::filesystem::path& file);
Recording ReadRecording(std::istream& in);

// True if the command, in upper-case digits, is the recorded one. Hidden digits match any digit.
bool Matches(const Event& exchange, std::string_view command);

}  // namespace recordings
