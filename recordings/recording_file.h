#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace recordings {

// A file that a session is recorded to. Every line is in it as soon as Append returns, so that
// whatever ends the process loses none.
class RecordingFile {
 public:
  RecordingFile() = default;
  RecordingFile(const RecordingFile&) = delete;
  RecordingFile& operator=(const RecordingFile&) = delete;
  ~RecordingFile();

  // Creates or empties the file; no other process can open it for recording until this object is
  // gone. What holds secrets is for the owner's eyes alone. Gives the empty text, or why it can't
  // be had.
  std::string Open(const std::filesystem::path& file, bool secret);

  // A line without its end. Gives the empty text, or why it is not in the file.
  std::string Append(std::string_view line);

 private:
  std::intptr_t handle_ = -1;
};

}  // namespace recordings
