#include "platform/log_mutex.h"

#include <mutex>

namespace orvane::platform {
namespace {

constinit std::mutex logMutex;

}  // namespace

void LogMutex::lock() { logMutex.lock(); }

void LogMutex::unlock() { logMutex.unlock(); }

}  // namespace orvane::platform
