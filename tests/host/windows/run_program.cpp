#include "host/run_program.h"

#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>

namespace host_test {
namespace {

HANDLE Open(const char* name, DWORD access, DWORD disposition) {
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  return CreateFileA(name, access, FILE_SHARE_READ, &inherited, disposition, FILE_ATTRIBUTE_NORMAL,
                     nullptr);
}

// True if the arguments end with this; it is taken off.
bool Take(const std::string& redirection, std::string& arguments) {
  if (!arguments.ends_with(redirection)) return false;
  arguments.erase(arguments.size() - redirection.size());
  return true;
}

}  // namespace

int RunInFolder(const std::string& program, const std::string& given) {
  std::string arguments = given;
  const bool noInput = Take(" <&-", arguments), noOutput = Take(" >&-", arguments),
             noError = Take(" 2>&-", arguments);
  std::string line = '"' + program + ".exe\" " + arguments;
  std::replace(line.begin(), line.end(), '\'', '"');
  std::wstring wide = std::filesystem::path(std::u8string(line.begin(), line.end())).wstring();
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = noInput ? nullptr : Open("in", GENERIC_READ, OPEN_EXISTING);
  start.hStdOutput = noOutput ? nullptr : Open("out", GENERIC_WRITE, CREATE_ALWAYS);
  start.hStdError = noError ? nullptr : Open("err", GENERIC_WRITE, CREATE_ALWAYS);
  PROCESS_INFORMATION process{};
  bool started = false;
  DWORD error = ERROR_INTERNAL_ERROR;  // what Wine gives now and then on a busy machine
  for (int tries = 0; !started && error == ERROR_INTERNAL_ERROR && tries < 5; ++tries) {
    started = CreateProcessW(nullptr, wide.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                             &start, &process) != 0;
    error = GetLastError();
  }
  for (const HANDLE file : {start.hStdInput, start.hStdOutput, start.hStdError}) CloseHandle(file);
  if (!started) {
    throw std::runtime_error("can't start " + program + ": error " + std::to_string(error));
  }
  DWORD exitCode = 0;
  WaitForSingleObject(process.hProcess, INFINITE);
  GetExitCodeProcess(process.hProcess, &exitCode);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return static_cast<int>(exitCode);
}

}  // namespace host_test
