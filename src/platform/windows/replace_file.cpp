#include "platform/replace_file.h"

#include <windows.h>

#include <algorithm>
#include <utility>

namespace orvane::platform {
namespace {

class File {
 public:
  explicit File(HANDLE handle) : handle_(handle) {}
  File(File&& other) noexcept : handle_(std::exchange(other.handle_, INVALID_HANDLE_VALUE)) {}
  File& operator=(File&&) = delete;
  ~File() { Close(); }

  explicit operator bool() const { return handle_ != INVALID_HANDLE_VALUE; }
  HANDLE Handle() const { return handle_; }
  void Close() {
    if (*this) CloseHandle(std::exchange(handle_, INVALID_HANDLE_VALUE));
  }

 private:
  HANDLE handle_;
};

File OpenForWriting(const std::string& path, DWORD disposition) {
  return File(CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                          disposition, FILE_ATTRIBUTE_NORMAL, nullptr));
}

// The file's own path, with all links followed.
std::string FinalPath(const File& file, const std::string& path) {
  char area[2 * MAX_PATH];
  const DWORD length =
      GetFinalPathNameByHandleA(file.Handle(), area, sizeof area, FILE_NAME_NORMALIZED);
  return length > 0 && length < sizeof area ? std::string(area, length) : path;
}

bool Write(const File& file, std::string_view octets) {
  while (!octets.empty()) {
    const auto part = static_cast<DWORD>(std::min<std::size_t>(octets.size(), MAXLONG));
    DWORD count = 0;
    if (WriteFile(file.Handle(), octets.data(), part, &count, nullptr) == 0) return false;
    octets.remove_prefix(count);
  }
  return true;
}

bool Seek(const File& file, std::size_t place) {
  LARGE_INTEGER distance;
  distance.QuadPart = static_cast<LONGLONG>(place);
  return SetFilePointerEx(file.Handle(), distance, nullptr, FILE_BEGIN) != 0;
}

bool CutAt(const File& file, std::size_t size) {
  return Seek(file, size) && SetEndOfFile(file.Handle()) != 0;
}

// Makes a file that was not there, beside the one at this path. Sets `name`.
File CreateBeside(const std::string& path, std::string& name) {
  constexpr DWORD kMostNames = 1000;
  for (DWORD i = 0; i < kMostNames; ++i) {
    name = path + "." + std::to_string(GetCurrentProcessId() + i) + ".new";
    File file = OpenForWriting(name, CREATE_NEW);
    if (file || GetLastError() != ERROR_FILE_EXISTS) return file;
  }
  return File(INVALID_HANDLE_VALUE);
}

enum class Replacement { kDone, kImpossible, kFailed };

Replacement ReplaceAtOnce(const std::string& path, std::string_view octets) {
  std::string name;
  File file = CreateBeside(path, name);
  if (!file) return Replacement::kImpossible;
  const bool written = Write(file, octets) && FlushFileBuffers(file.Handle()) != 0;
  file.Close();
  // One step of the file system, unlike ReplaceFile, which moves the old file away first.
  constexpr DWORD kOverOldFile = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
  if (written && MoveFileExA(name.c_str(), path.c_str(), kOverOldFile) != 0) {
    return Replacement::kDone;
  }
  DeleteFileA(name.c_str());
  return written ? Replacement::kImpossible : Replacement::kFailed;
}

bool Overwrite(const std::string& path, std::string_view octets) {
  const File file = OpenForWriting(path, OPEN_EXISTING);
  LARGE_INTEGER length;
  if (!file || GetFileSizeEx(file.Handle(), &length) == 0) return false;
  const auto size = static_cast<std::size_t>(length.QuadPart);
  // What the file grows by comes first: if the disk is full, this is where it shows.
  const auto kept = octets.substr(0, size);
  if (!Seek(file, size) || !Write(file, octets.substr(kept.size()))) {
    CutAt(file, size);
    return false;
  }
  return Seek(file, 0) && Write(file, kept) && CutAt(file, octets.size());
}

}  // namespace

bool ReplaceFileContents(const std::string& path, std::string_view octets) {
  File old = OpenForWriting(path, OPEN_EXISTING);
  if (!old) {
    return GetLastError() == ERROR_FILE_NOT_FOUND &&
           ReplaceAtOnce(path, octets) == Replacement::kDone;
  }
  const std::string target = FinalPath(old, path);
  old.Close();  // an open file can't be replaced
  const Replacement outcome = ReplaceAtOnce(target, octets);
  return outcome == Replacement::kDone ||
         (outcome == Replacement::kImpossible && Overwrite(target, octets));
}

}  // namespace orvane::platform
