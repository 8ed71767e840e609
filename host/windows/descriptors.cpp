#define WIN32_LEAN_AND_MEAN
#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include "host/platform.h"
#include "host/windows/console.h"
#include "host/windows/wide.h"

namespace host {
namespace {

bool IsOpen(int descriptor) {
  const HANDLE handle = reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
  return GetFileType(handle) != FILE_TYPE_UNKNOWN;
}

}  // namespace

void OpenStandardDescriptors() {
  for (int descriptor = 0; descriptor < 3; ++descriptor) {
    if (IsOpen(descriptor)) continue;
    const int null = _wopen(L"NUL", descriptor == 0 ? _O_WRONLY : _O_RDONLY);
    if (null == descriptor || null < 0) continue;
    _dup2(null, descriptor);
    _close(null);
  }
  // Text mode ends at the octet 1A.
  _setmode(0, _O_BINARY);
}

int OpenFile(const std::string& name) {
  return _wopen(ToWide(name).c_str(), _O_RDONLY | _O_BINARY | _O_NOINHERIT);
}

void CloseFile(int descriptor) { _close(descriptor); }

std::ptrdiff_t ReadSome(int descriptor, char* area, size_t size) {
  if (descriptor == 0 && IsConsole(0)) return ReadFromConsole(area, size);
  return _read(descriptor, area, static_cast<unsigned>(size));
}

std::ptrdiff_t WriteSome(int descriptor, std::string_view text) {
  if (IsConsole(descriptor)) return WriteToConsole(descriptor, text);
  return _write(descriptor, text.data(), static_cast<unsigned>(text.size()));
}

}  // namespace host
