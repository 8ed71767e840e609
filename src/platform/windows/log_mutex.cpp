#include "platform/log_mutex.h"

#include <windows.h>

namespace orvane::platform {
namespace {

// Made as the library is loaded: no first call can fail for want of memory.
const HANDLE logMutex = CreateMutexW(nullptr, FALSE, nullptr);

}  // namespace

void LogMutex::lock() { WaitForSingleObject(logMutex, INFINITE); }

void LogMutex::unlock() { ReleaseMutex(logMutex); }

}  // namespace orvane::platform
