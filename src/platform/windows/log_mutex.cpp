#include "platform/log_mutex.h"

#include <windows.h>

namespace orvane::platform {
namespace {

HANDLE Handle() {
  static const HANDLE handle = CreateMutexW(nullptr, FALSE, nullptr);
  return handle;
}

}  // namespace

void LogMutex::lock() { WaitForSingleObject(Handle(), INFINITE); }

void LogMutex::unlock() { ReleaseMutex(Handle()); }

}  // namespace orvane::platform
