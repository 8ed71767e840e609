#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace recordings {

// A file that a session is recorded to. When Append returns, the line is in the file: no end of the
// process can lose it.
class RecordingFile {
 public:
  RecordingFile() = default;
  RecordingFile(const RecordingFile&) = delete;
  RecordingFile& operator=(const RecordingFile&) = delete;
  ~RecordingFile();

  // Creates or empties the file. Until this object is gone, no other process can open it for
  // recording. On POSIX only its owner can read a regular file with secrets. Gives
  // the empty text, or why it failed.
  std::string Open(const std::filesystem::path& file, bool secret);

  // Takes a line without its line end. Gives the empty text, or why the line is not in the file.
  std::string Append(std::string_view line);

 private:
  std::intptr_t handle_ = -1;
};

}  // namespace recordings
