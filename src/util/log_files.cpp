#include <algorithm>
#include <memory>
#include <new>

#include "orvane.h"
#include "platform/log_file.h"
#include "util/hex.h"

using orvane::platform::LogFile;

void AsciiLog(const char* path, const char* text) { LogFile(path).Append(text); }

void HexLog(const char* path, const unsigned char* octets, int32_t count) {
  LogFile file(path);
  std::size_t left = count > 0 ? static_cast<std::size_t>(count) : 0;
  // One piece keeps the entry whole; without memory for that, several pieces go out.
  char area[4096];
  const std::unique_ptr<char[]> large(new (std::nothrow) char[2 * left]);
  char* const text = large ? large.get() : area;
  const std::size_t most = large ? left : sizeof area / 2;
  while (left > 0) {
    const std::size_t piece = std::min(left, most);
    orvane::EncodeHex(octets, piece, text);
    file.Append({text, 2 * piece});
    octets += piece;
    left -= piece;
  }
}
