#include "platform/clock.h"

#include <windows.h>

namespace orvane::platform {

CalendarTime UtcNow() {
  SYSTEMTIME now;
  GetSystemTime(&now);
  return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond, now.wMilliseconds};
}

}  // namespace orvane::platform
