#include "recordings/recording_file.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <system_error>

namespace recordings {
namespace {

HANDLE ToHandle(std::intptr_t handle) { return reinterpret_cast<HANDLE>(handle); }

std::string Reason() {
  const DWORD error = GetLastError();
  if (error == ERROR_SHARING_VIOLATION) return "another program has it open";
  return "Windows error " + std::to_string(error);
}

}  // namespace

RecordingFile::~RecordingFile() {
  if (handle_ != -1) CloseHandle(ToHandle(handle_));
}

// Here the folder's rights decide who may read the file.
std::string RecordingFile::Open(const std::filesystem::path& file, bool) {
  handle_ = reinterpret_cast<std::intptr_t>(CreateFileW(file.c_str(), GENERIC_WRITE,
                                                        FILE_SHARE_READ, nullptr, CREATE_ALWAYS,
                                                        FILE_ATTRIBUTE_NORMAL, nullptr));
  return handle_ == -1 ? Reason() : "";
}

std::string RecordingFile::Append(std::string_view line) {
  std::string whole(line);
  whole += '\n';
  for (std::string_view rest = whole; !rest.empty();) {
    DWORD written = 0;
    if (WriteFile(ToHandle(handle_), rest.data(), static_cast<DWORD>(rest.size()), &written,
                  nullptr) == 0) {
      return Reason();
    }
    rest.remove_prefix(written);
  }
  return "";
}

}  // namespace recordings
