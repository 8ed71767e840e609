#include "platform/log_file.h"

#include <windows.h>

#include <algorithm>
#include <new>
#include <string>

namespace orvane::platform {
namespace {

// Made when the library is loaded, so that no first call can fail for lack of memory.
const HANDLE LogMutex = CreateMutexW(nullptr, FALSE, nullptr);

OVERLAPPED At(DWORD high, DWORD low) {
  OVERLAPPED place{};
  place.OffsetHigh = high;
  place.Offset = low;
  return place;
}

// Keeps other processes that log into the file out: over a network, and under Wine, the system
// finds the end of the file and writes there in two steps.
class AppendLock {
 public:
  explicit AppendLock(std::intptr_t file) : file_(reinterpret_cast<HANDLE>(file)) {
    constexpr DWORD kFlags = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;
    // At most half a second: a process that is stopped while it logs must not stop others.
    for (int tries = 0; tries < 500; ++tries) {
      held_ = LockFileEx(file_, kFlags, 0, 1, 0, &place_) != 0;
      if (held_ || GetLastError() != ERROR_LOCK_VIOLATION) return;
      Sleep(1);
    }
  }
  AppendLock(const AppendLock&) = delete;
  AppendLock& operator=(const AppendLock&) = delete;
  ~AppendLock() {
    if (held_) UnlockFileEx(file_, 0, 1, 0, &place_);
  }

 private:
  HANDLE file_;
  OVERLAPPED place_ = At(MAXLONG, MAXDWORD);  // beyond any text
  bool held_ = false;
};

// Writes at the end that the file has at that moment.
void Write(std::intptr_t file, std::string_view text) {
  const auto handle = reinterpret_cast<HANDLE>(file);
  while (!text.empty()) {
    const auto piece = static_cast<DWORD>(std::min<std::size_t>(text.size(), MAXLONG));
    OVERLAPPED end = At(MAXDWORD, MAXDWORD);
    DWORD count = 0;
    if (WriteFile(handle, text.data(), piece, &count, &end) == 0 || count == 0) return;
    text.remove_prefix(count);
  }
}

}  // namespace

LogFile::LogFile(const char* path) {
  WaitForSingleObject(LogMutex, INFINITE);
  file_ = reinterpret_cast<std::intptr_t>(CreateFileA(path, GENERIC_WRITE,
                                                      FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                                      OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
}

LogFile::~LogFile() {
  if (file_ != kNone) CloseHandle(reinterpret_cast<HANDLE>(file_));
  ReleaseMutex(LogMutex);
}

void LogFile::Append(std::string_view text) {
  constexpr std::string_view kLineEnd = "\r\n";
  if (file_ == kNone) return;
  const AppendLock lock(file_);
  try {
    std::string stored;
    const auto lines = std::count(text.begin(), text.end(), '\n');
    if (lines == 0) return Write(file_, text);
    stored.reserve(text.size() + static_cast<std::size_t>(lines));
    for (const char c : text) c == '\n' ? stored += kLineEnd : stored += c;
    Write(file_, stored);
  } catch (const std::bad_alloc&) {
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t end = std::min(text.find('\n', at), text.size());
      Write(file_, text.substr(at, end - at));
      if (end < text.size()) Write(file_, kLineEnd);
      at = end + 1;
    }
  }
}

}  // namespace orvane::platform
