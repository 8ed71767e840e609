#include "platform/input_file.h"

#include <windows.h>

namespace orvane::platform {

InputFile::InputFile(const std::string& name) {
  constexpr DWORD kSharing = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const HANDLE file = CreateFileW(std::wstring(name.begin(), name.end()).c_str(), GENERIC_READ,
                                  kSharing, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return;
  if (GetFileType(file) == FILE_TYPE_DISK) {
    handle_ = reinterpret_cast<std::intptr_t>(file);
  } else {
    CloseHandle(file);
  }
}

InputFile::~InputFile() {
  if (*this) CloseHandle(reinterpret_cast<HANDLE>(handle_));
}

std::size_t InputFile::Read(char* area, std::size_t size) {
  DWORD count = 0;
  const auto wanted = static_cast<DWORD>(size < MAXLONG ? size : MAXLONG);
  if (failed_) return 0;
  failed_ = ReadFile(reinterpret_cast<HANDLE>(handle_), area, wanted, &count, nullptr) == 0;
  return failed_ ? 0 : count;
}

}  // namespace orvane::platform
