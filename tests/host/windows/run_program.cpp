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

}  // namespace

int RunInFolder(const std::string& program, const std::string& arguments) {
  std::string line = '"' + program + ".exe\" " + arguments;
  std::replace(line.begin(), line.end(), '\'', '"');
  std::wstring wide = std::filesystem::path(std::u8string(line.begin(), line.end())).wstring();
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = Open("in", GENERIC_READ, OPEN_EXISTING);
  start.hStdOutput = Open("out", GENERIC_WRITE, CREATE_ALWAYS);
  start.hStdError = Open("err", GENERIC_WRITE, CREATE_ALWAYS);
  PROCESS_INFORMATION process{};
  const bool started = CreateProcessW(nullptr, wide.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                      nullptr, &start, &process) != 0;
  for (const HANDLE file : {start.hStdInput, start.hStdOutput, start.hStdError}) CloseHandle(file);
  if (!started) throw std::runtime_error("can't start " + program);
  DWORD exitCode = 0;
  WaitForSingleObject(process.hProcess, INFINITE);
  GetExitCodeProcess(process.hProcess, &exitCode);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return static_cast<int>(exitCode);
}

}  // namespace host_test
