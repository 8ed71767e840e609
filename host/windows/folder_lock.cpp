#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <string>

#include "host/platform.h"

namespace host {
namespace {

// The same for the same folder, however it is named.
std::wstring LockName() {
  std::wstring name = L"Orvane tags";
  const HANDLE folder = CreateFileW(L".", FILE_READ_ATTRIBUTES,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  BY_HANDLE_FILE_INFORMATION information;
  if (GetFileInformationByHandle(folder, &information) != 0) {
    for (const DWORD part : {information.dwVolumeSerialNumber, information.nFileIndexHigh,
                             information.nFileIndexLow}) {
      name += L' ' + std::to_wstring(part);
    }
  }
  CloseHandle(folder);
  return name;
}

}  // namespace

FolderLock::FolderLock()
    : handle_(reinterpret_cast<std::intptr_t>(CreateMutexW(nullptr, FALSE, LockName().c_str()))) {
  WaitForSingleObject(reinterpret_cast<HANDLE>(handle_), INFINITE);
}

FolderLock::~FolderLock() {
  const auto mutex = reinterpret_cast<HANDLE>(handle_);
  ReleaseMutex(mutex);
  CloseHandle(mutex);
}

}  // namespace host
