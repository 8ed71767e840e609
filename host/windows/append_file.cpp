#include "host/append_file.h"

#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <system_error>
#include <thread>

#include "host/failure.h"
#include "host/platform.h"
#include "host/text.h"
#include "host/windows/wide.h"

namespace host {
namespace {

constexpr int kTries = 50;
constexpr std::chrono::milliseconds kBetweenTries{100};

}  // namespace

AppendFile::AppendFile(const std::string& name) : name_(name), descriptor_(-1) {
  for (int tries = 0; tries < kTries; ++tries) {
    descriptor_ =
        _wsopen(ToWide(name).c_str(), _O_RDWR | _O_CREAT | _O_APPEND | _O_BINARY | _O_NOINHERIT,
                _SH_DENYWR, _S_IREAD | _S_IWRITE);
    if (descriptor_ >= 0 || errno != EACCES) break;
    std::this_thread::sleep_for(kBetweenTries);
  }
  if (descriptor_ < 0) Fail("open");
}

AppendFile::~AppendFile() { _close(descriptor_); }

void AppendFile::Fail(const std::string& what) const {
  throw Failure(kFileFault, "can't " + what + ' ' + Printable(name_) + ": " +
                                std::generic_category().message(errno));
}

void AppendFile::Cut(size_t size) {
  if (_chsize_s(descriptor_, static_cast<__int64>(size)) != 0) Fail("cut");
}

void AppendFile::Append(std::string_view text) {
  while (!text.empty()) {
    const std::ptrdiff_t count = WriteSome(descriptor_, text);
    if (count <= 0) Fail("write");
    text.remove_prefix(static_cast<size_t>(count));
  }
}

void AppendFile::Flush() {
  if (_commit(descriptor_) != 0) Fail("write");
}

}  // namespace host
