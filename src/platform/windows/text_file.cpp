#include "platform/text_file.h"

#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>

#include <algorithm>
#include <climits>

namespace orvane::platform {

TextFile::TextFile(const char* path) {
  constexpr int kMode = _O_WRONLY | _O_CREAT | _O_APPEND | _O_TEXT | _O_NOINHERIT;
  _sopen_s(&descriptor_, path, kMode, _SH_DENYNO, _S_IREAD | _S_IWRITE);
}

TextFile::~TextFile() {
  if (descriptor_ >= 0) _close(descriptor_);
}

void TextFile::Append(std::string_view text) {
  while (descriptor_ >= 0 && !text.empty()) {
    const auto piece = std::min<std::size_t>(text.size(), INT_MAX);
    const int written = _write(descriptor_, text.data(), static_cast<unsigned>(piece));
    if (written <= 0) return;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

}  // namespace orvane::platform
