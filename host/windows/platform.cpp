#include "host/platform.h"

#define WIN32_LEAN_AND_MEAN
#include <io.h>
#include <stdio.h>
#include <windows.h>

#include <vector>

#ifndef ENABLE_VIRTUAL_TERMINAL_PROCESSING
#define ENABLE_VIRTUAL_TERMINAL_PROCESSING 0x0004
#endif

namespace host {

bool OutputTakesColour() {
  if (_isatty(_fileno(stdout)) == 0) return false;
  SetConsoleOutputCP(CP_UTF8);
  // The size that an unset or empty variable needs is at most its terminator.
  if (GetEnvironmentVariableA("NO_COLOR", nullptr, 0) > 1) return false;
  const HANDLE console = GetStdHandle(STD_OUTPUT_HANDLE);
  DWORD mode = 0;
  return GetConsoleMode(console, &mode) != 0 &&
         SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

bool InputIsTerminal() { return _isatty(_fileno(stdin)) != 0; }

std::filesystem::path ProgramFolder() {
  std::vector<wchar_t> name(32768);
  const DWORD length = GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size()));
  return std::filesystem::path(name.data(), name.data() + length).parent_path();
}

std::string_view ModuleExtension() { return ".dll"; }

bool LoadModule(const std::filesystem::path& file) { return LoadLibraryW(file.c_str()) != nullptr; }

bool LoadedModuleExports(std::string_view vendor, const char* function) {
  const HMODULE module = GetModuleHandleA((std::string(vendor) + ".dll").c_str());
  return module != nullptr && GetProcAddress(module, function) != nullptr;
}

}  // namespace host
