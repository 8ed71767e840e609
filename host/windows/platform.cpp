#include "host/platform.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <string>

#include "host/failure.h"
#include "host/windows/wide.h"

namespace host {
namespace {

std::wstring FromPage(UINT page, std::string_view text) {
  const int count = static_cast<int>(text.size());
  const int room = MultiByteToWideChar(page, 0, text.data(), count, nullptr, 0);
  std::wstring wide(static_cast<size_t>(room), L'\0');
  MultiByteToWideChar(page, 0, text.data(), count, wide.data(), room);
  return wide;
}

FoundModule Load(std::string_view name, Lookup lookup, DWORD besides) {
  const std::filesystem::path file = ModuleFileName(name);
  std::vector<wchar_t> path(32768);
  const DWORD room = static_cast<DWORD>(path.size());
  GetModuleFileNameW(GetModuleHandleW(L"orvane.dll"), path.data(), room);
  HMODULE module = nullptr;
  if (lookup != Lookup::kBesideLibrary) {
    const DWORD folders = lookup == Lookup::kInOwnFolders ? LOAD_LIBRARY_SEARCH_DEFAULT_DIRS : 0;
    module = LoadLibraryExW(file.c_str(), nullptr, besides | folders);
  }
  if (module == nullptr) {
    const auto beside = std::filesystem::path(path.data()).parent_path() / file;
    module = LoadLibraryExW(beside.c_str(), nullptr, besides | LOAD_WITH_ALTERED_SEARCH_PATH);
  }
  if (module == nullptr) {
    const DWORD error = GetLastError();
    const bool missing = error == ERROR_MOD_NOT_FOUND || error == ERROR_FILE_NOT_FOUND;
    return {nullptr, missing ? "it or a library that it needs is not found"
                             : "Windows error " + std::to_string(error)};
  }
  const DWORD length = GetModuleFileNameW(module, path.data(), room);
  const auto text = std::filesystem::path(path.data(), path.data() + length).u8string();
  return {module, std::string(text.begin(), text.end())};
}

// The same name for the same folder, whatever its path.
std::wstring LockName() {
  std::wstring name = L"Orvane tags";
  const HANDLE folder = CreateFileW(L".", FILE_READ_ATTRIBUTES,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  BY_HANDLE_FILE_INFORMATION information;
  if (GetFileInformationByHandle(folder, &information) != 0) {
    for (const DWORD part : {information.dwVolumeSerialNumber, information.nFileIndexHigh,
                             information.nFileIndexLow}) {
      name += L' ' + std::to_wstring(part);
    }
  }
  CloseHandle(folder);
  return name;
}

}  // namespace

std::optional<std::string> EnvironmentVariable(const std::string& name) {
  const wchar_t* const value = _wgetenv(ToWide(name).c_str());
  return value != nullptr ? std::optional<std::string>(FromWide(value)) : std::nullopt;
}

std::filesystem::path ProgramFolder() {
  std::vector<wchar_t> name(32768);
  const DWORD length = GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size()));
  return std::filesystem::path(name.data(), name.data() + length).parent_path();
}

std::filesystem::path ModulesFolder() { return ProgramFolder(); }

void* LoadModule(const std::filesystem::path& file) { return LoadLibraryW(file.c_str()); }

std::string ModuleFileName(std::string_view name) { return std::string(name) + ".dll"; }

FoundModule FindModule(std::string_view name, Lookup lookup) { return Load(name, lookup, 0); }

// Runs none of the module's code.
std::string LocateModule(std::string_view name, Lookup lookup) {
  return Load(name, lookup, DONT_RESOLVE_DLL_REFERENCES).message;
}

std::string SystemName() {
  RTL_OSVERSIONINFOW version{};
  version.dwOSVersionInfoSize = sizeof version;
  // The documented functions' answers depend on the program's manifest.
  const auto get = reinterpret_cast<LONG(WINAPI*)(RTL_OSVERSIONINFOW*)>(
      ModuleFunction(GetModuleHandleW(L"ntdll.dll"), "RtlGetVersion"));
  if (get != nullptr) get(&version);
  return "Windows " + std::to_string(version.dwMajorVersion) + '.' +
         std::to_string(version.dwMinorVersion) + '.' + std::to_string(version.dwBuildNumber) +
         " x86_64";
}

void* ModuleFunction(void* module, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module), name));
}

bool LoadedModuleExports(std::string_view vendor, const char* function) {
  const HMODULE module = GetModuleHandleA((std::string(vendor) + ".dll").c_str());
  return module != nullptr && GetProcAddress(module, function) != nullptr;
}

std::string ToLibrary(const std::string& name) {
  const std::wstring wide = ToWide(name);
  const int count = static_cast<int>(wide.size());
  // For UTF-8 the call accepts neither the flag nor the pointer.
  const bool loses = GetACP() != CP_UTF8;
  const DWORD flags = loses ? WC_NO_BEST_FIT_CHARS : 0;
  BOOL lost = FALSE;
  BOOL* const tellsLost = loses ? &lost : nullptr;
  const int room =
      WideCharToMultiByte(CP_ACP, flags, wide.data(), count, nullptr, 0, nullptr, tellsLost);
  std::string text(static_cast<size_t>(room), '\0');
  WideCharToMultiByte(CP_ACP, flags, wide.data(), count, text.data(), room, nullptr, tellsLost);
  if (!lost) return text;
  throw Failure(kReaderFault, "the code page " + std::to_string(GetACP()) +
                                  " lacks a character of the reader's name \"" + name + '"');
}

std::string FromLibrary(std::string_view name) { return FromWide(FromPage(CP_ACP, name)); }

FolderLock::FolderLock()
    : handle_(reinterpret_cast<std::intptr_t>(CreateMutexW(nullptr, FALSE, LockName().c_str()))) {
  WaitForSingleObject(reinterpret_cast<HANDLE>(handle_), INFINITE);
}

FolderLock::~FolderLock() {
  const auto mutex = reinterpret_cast<HANDLE>(handle_);
  ReleaseMutex(mutex);
  CloseHandle(mutex);
}

std::wstring ToWide(std::string_view text) { return FromPage(CP_UTF8, text); }

std::string FromWide(std::wstring_view wide) {
  const int count = static_cast<int>(wide.size());
  const int room =
      WideCharToMultiByte(CP_UTF8, 0, wide.data(), count, nullptr, 0, nullptr, nullptr);
  std::string text(static_cast<size_t>(room), '\0');
  WideCharToMultiByte(CP_UTF8, 0, wide.data(), count, text.data(), room, nullptr, nullptr);
  return text;
}

}  // namespace host
