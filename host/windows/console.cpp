#define WIN32_LEAN_AND_MEAN
#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <limits>
#include <vector>

#include "host/platform.h"
#include "host/windows/wide.h"

#ifndef ENABLE_VIRTUAL_TERMINAL_PROCESSING
#define ENABLE_VIRTUAL_TERMINAL_PROCESSING 0x0004
#endif

namespace host {
namespace {

HANDLE HandleOf(int descriptor) { return reinterpret_cast<HANDLE>(_get_osfhandle(descriptor)); }

// The console whose mode must be restored, and that mode.
std::atomic<HANDLE> changedOutput = nullptr;
DWORD givenMode = 0;

void GiveBack() {
  if (const HANDLE output = changedOutput.exchange(nullptr)) SetConsoleMode(output, givenMode);
}

// How many more times Ctrl-C only counts before it ends the program.
std::atomic<int> interruptsLeft = 0;
std::atomic<int> interrupts = 0;

BOOL WINAPI HandleControl(DWORD event) {
  if (event == CTRL_C_EVENT && interruptsLeft > 0) {
    --interruptsLeft;
    ++interrupts;
    return TRUE;
  }
  GiveBack();
  return FALSE;
}

void HandleControls() {
  static const bool handled = SetConsoleCtrlHandler(HandleControl, TRUE) != 0;
  static_cast<void>(handled);
}

bool IsConsole(int descriptor) {
  DWORD mode = 0;
  return GetConsoleMode(HandleOf(descriptor), &mode) != 0;
}

// A typed line comes with its line end; a line that begins with Ctrl-Z is the end. EINTR after
// Ctrl-C, unless that ends the program.
std::ptrdiff_t ReadFromConsole(char* area, size_t size) {
  constexpr size_t kMostOctets = 3;  // UTF-8 octets for one unit of UTF-16
  std::vector<wchar_t> units(size / kMostOctets);
  DWORD count = 0;
  SetLastError(ERROR_SUCCESS);
  const BOOL read =
      ReadConsoleW(HandleOf(0), units.data(), static_cast<DWORD>(units.size()), &count, nullptr);
  if (read == 0 || (count == 0 && GetLastError() == ERROR_OPERATION_ABORTED)) {
    errno = GetLastError() == ERROR_OPERATION_ABORTED ? EINTR : EIO;
    return -1;
  }
  constexpr wchar_t kCtrlZ = 0x1A;
  if (count == 0 || units[0] == kCtrlZ) return 0;
  const std::string text = FromWide({units.data(), count});
  std::copy(text.begin(), text.end(), area);
  return static_cast<std::ptrdiff_t>(text.size());
}

std::ptrdiff_t WriteToConsole(int descriptor, std::string_view text) {
  const std::wstring wide = ToWide(text);
  DWORD count = 0;
  if (WriteConsoleW(HandleOf(descriptor), wide.data(), static_cast<DWORD>(wide.size()), &count,
                    nullptr) == 0) {
    errno = EIO;
    return -1;
  }
  return static_cast<std::ptrdiff_t>(text.size());
}

}  // namespace

bool OutputTakesColour() {
  if (!IsConsole(1)) return false;
  const HANDLE output = HandleOf(1);
  DWORD mode = 0;
  GetConsoleMode(output, &mode);
  const bool ready = SetConsoleMode(output, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
  if (ready && changedOutput == nullptr) {
    givenMode = mode;
    changedOutput = output;
    HandleControls();
    std::atexit(GiveBack);
  }
  return ready && EnvironmentVariable("NO_COLOR").value_or("").empty();
}

void NoteInterrupts(int noted) {
  HandleControls();
  interruptsLeft = noted;
}

int Interrupts() { return interrupts; }

void WriteOctets() { _setmode(1, _O_BINARY); }

bool InputIsTerminal() { return IsConsole(0); }
bool OutputIsTerminal() { return IsConsole(1); }
size_t OutputWidth() {
  CONSOLE_SCREEN_BUFFER_INFO information;
  if (GetConsoleScreenBufferInfo(HandleOf(1), &information) == 0) return 80;
  return static_cast<size_t>(information.srWindow.Right - information.srWindow.Left + 1);
}

std::optional<std::string> EditLine(const std::string& prompt) {
  static const int output = OutputIsTerminal() ? 1 : _wopen(L"CONOUT$", _O_RDWR);
  HandleControls();
  interruptsLeft = std::numeric_limits<int>::max();
  WriteToConsole(output, prompt);
  std::string line;
  std::array<char, 32768> area;
  std::ptrdiff_t count = 0;
  do {
    count = ReadFromConsole(area.data(), area.size());
    if (count > 0) line.append(area.data(), static_cast<size_t>(count));
  } while (count > 0 && !line.ends_with('\n'));
  interruptsLeft = 1;
  if (count < 0 && errno == EINTR) {
    WriteToConsole(output, "\n");
    return "";
  }
  if (count <= 0) return std::nullopt;
  line.erase(line.find_last_not_of("\r\n") + 1);
  return line;
}

void RememberLine(const std::string&) {}  // the console does it itself

void ForgetLines() {}  // the console cannot

void CompleteWith(Completer) {}  // the console has no completion

std::optional<std::string> HistoryFile() { return std::nullopt; }

bool WriteForOwner(const std::string&, const std::string&) { return false; }

void OpenStandardDescriptors() {
  for (int descriptor = 0; descriptor < 3; ++descriptor) {
    if (GetFileType(HandleOf(descriptor)) != FILE_TYPE_UNKNOWN) continue;
    const int null = _wopen(L"NUL", descriptor == 0 ? _O_WRONLY : _O_RDONLY);
    if (null == descriptor || null < 0) continue;
    _dup2(null, descriptor);
    _close(null);
  }
  // In text mode the octet 1A would end the input.
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
