#define WIN32_LEAN_AND_MEAN
#include "host/child_process.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include "host/failure.h"
#include "host/platform.h"
#include "host/windows/wide.h"

namespace host {
namespace {

// Quotes for the C runtime's argument parser: backslashes count only before a quote.
std::wstring Quoted(const std::string& argument) {
  std::string text = "\"";
  size_t slashes = 0;
  for (const char each : argument) {
    if (each == '"') text.append(slashes + 1, '\\');
    slashes = each == '\\' ? slashes + 1 : 0;
    text += each;
  }
  text.append(slashes, '\\');
  return ToWide(text + '"');
}

struct Pipe {
  HANDLE ours = nullptr;
  HANDLE theirs = nullptr;

  explicit Pipe(bool theyRead) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    CreatePipe(theyRead ? &theirs : &ours, theyRead ? &ours : &theirs, &inherited, 0);
    SetHandleInformation(ours, HANDLE_FLAG_INHERIT, 0);
  }
};

std::wstring ProgramFile() {
  std::wstring name(32768, L'\0');
  name.resize(GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size())));
  return name;
}

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& arguments) {
  std::wstring line = L"orvane";
  for (const std::string& each : arguments) line += L' ' + Quoted(each);
  const Pipe in(true), out(false);
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = in.theirs;
  startup.hStdOutput = out.theirs;
  startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
  PROCESS_INFORMATION started{};
  // A process group of its own, so that Ctrl-C does not reach it.
  const BOOL done = CreateProcessW(ProgramFile().c_str(), line.data(), nullptr, nullptr, TRUE,
                                   CREATE_NEW_PROCESS_GROUP, nullptr, nullptr, &startup, &started);
  const DWORD error = GetLastError();
  CloseHandle(in.theirs);
  CloseHandle(out.theirs);
  if (done == 0) {
    throw Failure(kReaderFault, "can't start a worker: Windows error " + std::to_string(error));
  }
  CloseHandle(started.hThread);
  process_ = reinterpret_cast<std::intptr_t>(started.hProcess);
  input_ = _open_osfhandle(reinterpret_cast<std::intptr_t>(in.ours), _O_BINARY);
  output_ = _open_osfhandle(reinterpret_cast<std::intptr_t>(out.ours), _O_RDONLY | _O_BINARY);
}

ChildProcess::~ChildProcess() { WaitForEnd(); }

std::string ChildProcess::WaitForEnd() {
  if (ended_) return ending_;
  _close(input_);
  const auto process = reinterpret_cast<HANDLE>(process_);
  WaitForSingleObject(process, INFINITE);
  DWORD code = 0;
  GetExitCodeProcess(process, &code);
  CloseHandle(process);
  ended_ = true;
  if (code != 0) ending_ = "exit code " + std::to_string(code);
  return ending_;
}

int TakeStandardOutput() {
  const int taken = _dup(1);
  _setmode(taken, _O_BINARY);
  _dup2(2, 1);
  return taken;
}

}  // namespace host
