#include <algorithm>
#include <mutex>

#include "orvane.h"
#include "platform/log_mutex.h"
#include "platform/text_file.h"
#include "util/hex.h"

namespace {

using orvane::platform::LogMutex;
using orvane::platform::TextFile;

}  // namespace

void AsciiLog(const char* path, const char* text) {
  LogMutex mutex;
  const std::lock_guard lock(mutex);
  TextFile(path).Append(text);
}

void HexLog(const char* path, const unsigned char* octets, int32_t count) {
  char text[4096];
  LogMutex mutex;
  const std::lock_guard lock(mutex);
  TextFile file(path);
  for (std::size_t left = count > 0 ? static_cast<std::size_t>(count) : 0; left > 0;) {
    const std::size_t piece = std::min(left, sizeof text / 2);
    orvane::EncodeHex(octets, piece, text);
    file.Append({text, 2 * piece});
    octets += piece;
    left -= piece;
  }
}
