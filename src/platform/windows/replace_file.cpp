#include "platform/replace_file.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <utility>
#include <vector>

namespace orvane::platform {
namespace {

class File {
 public:
  explicit File(HANDLE handle) : handle_(handle) {}
  File(File&& other) noexcept : handle_(std::exchange(other.handle_, INVALID_HANDLE_VALUE)) {}
  File& operator=(File&&) = delete;
  ~File() { Close(); }

  explicit operator bool() const { return handle_ != INVALID_HANDLE_VALUE; }
  HANDLE Handle() const { return handle_; }
  void Close() {
    if (*this) CloseHandle(std::exchange(handle_, INVALID_HANDLE_VALUE));
  }

 private:
  HANDLE handle_;
};

File OpenForWriting(const std::wstring& path) {
  return File(CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                          OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
}

// The text that a system call writes. The call returns the room that it needs, or the length.
template <typename Call>
std::wstring TextOf(const Call& call) {
  std::wstring text;
  for (DWORD length = MAX_PATH; length > text.size();) {
    text.resize(length);
    length = call(text.data(), length);
    if (length < text.size()) text.resize(length);
  }
  return text;
}

std::wstring FullPath(const std::wstring& path) {
  return TextOf([&](wchar_t* area, DWORD size) {
    return GetFullPathNameW(path.c_str(), size, area, nullptr);
  });
}

// The file's own path, with all links followed; empty if it cannot be found out.
std::wstring FinalPath(const File& file) {
  return TextOf([&](wchar_t* area, DWORD size) {
    return GetFinalPathNameByHandleW(file.Handle(), area, size, FILE_NAME_NORMALIZED);
  });
}

bool Write(const File& file, std::string_view octets) {
  while (!octets.empty()) {
    const auto part = static_cast<DWORD>(std::min<std::size_t>(octets.size(), MAXLONG));
    DWORD count = 0;
    if (WriteFile(file.Handle(), octets.data(), part, &count, nullptr) == 0) return false;
    octets.remove_prefix(count);
  }
  return true;
}

bool Seek(const File& file, std::size_t place) {
  LARGE_INTEGER distance;
  distance.QuadPart = static_cast<LONGLONG>(place);
  return SetFilePointerEx(file.Handle(), distance, nullptr, FILE_BEGIN) != 0;
}

bool CutAt(const File& file, std::size_t size) {
  return Seek(file, size) && SetEndOfFile(file.Handle()) != 0;
}

// The access-control list of a file and its kept attribute flags.
struct Attributes {
  std::vector<char> accessList;  // empty: the list of any new file
  DWORD flags = 0;
};

Attributes AttributesOf(const File& file) {
  constexpr SECURITY_INFORMATION kAccess = DACL_SECURITY_INFORMATION;
  constexpr DWORD kKept = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE |
                          FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
  Attributes attributes;
  DWORD size = 0;
  GetKernelObjectSecurity(file.Handle(), kAccess, nullptr, 0, &size);
  attributes.accessList.resize(size);
  char* const list = attributes.accessList.data();
  if (GetKernelObjectSecurity(file.Handle(), kAccess, list, size, &size) == 0) {
    attributes.accessList.clear();
  }
  BY_HANDLE_FILE_INFORMATION information;
  if (GetFileInformationByHandle(file.Handle(), &information) != 0) {
    attributes.flags = information.dwFileAttributes & kKept;
  }
  return attributes;
}

// Makes a new file NAME.NUMBER.new beside the one at this path. While it is open, nobody else can
// remove it.
File CreateBeside(const std::wstring& path, Attributes attributes) {
  constexpr DWORD kMostNames = 1000;
  SECURITY_ATTRIBUTES security{.nLength = sizeof security,
                               .lpSecurityDescriptor = attributes.accessList.data(),
                               .bInheritHandle = FALSE};
  for (DWORD i = 0; i < kMostNames; ++i) {
    const std::wstring name = path + L"." + std::to_wstring(GetCurrentProcessId() + i) + L".new";
    File file(CreateFileW(name.c_str(), GENERIC_WRITE | DELETE, FILE_SHARE_READ,
                          attributes.accessList.empty() ? nullptr : &security, CREATE_NEW,
                          attributes.flags, nullptr));
    if (file || GetLastError() != ERROR_FILE_EXISTS) return file;
  }
  return File(INVALID_HANDLE_VALUE);
}

void RemoveDeadNewFiles(const std::wstring& path) {
  const std::wstring folder = path.substr(0, path.rfind(L'\\') + 1);
  const std::size_t number = path.size() - folder.size() + 1;
  WIN32_FIND_DATAW entry;
  const HANDLE search = FindFirstFileW((path + L".*.new").c_str(), &entry);
  if (search == INVALID_HANDLE_VALUE) return;
  do {
    const std::wstring name = entry.cFileName;
    const bool isOurs = name.find_first_not_of(L"0123456789", number) == name.size() - 4;
    if (isOurs && name.size() > number + 4) DeleteFileW((folder + name).c_str());
  } while (FindNextFileW(search, &entry) != 0);
  FindClose(search);
}

// Unlike ReplaceFile, which moves the old file away first, this is one step of the file system.
bool TakeThePlace(const File& file, const std::wstring& path) {
  const std::size_t octets = path.size() * sizeof(wchar_t);
  std::vector<char> area(sizeof(FILE_RENAME_INFO) + octets);
  auto* const rename = reinterpret_cast<FILE_RENAME_INFO*>(area.data());
  rename->ReplaceIfExists = TRUE;
  rename->FileNameLength = static_cast<DWORD>(octets);
  std::memcpy(rename->FileName, path.data(), octets);
  return SetFileInformationByHandle(file.Handle(), FileRenameInfo, rename,
                                    static_cast<DWORD>(area.size())) != 0;
}

void Remove(const File& file) {
  FILE_DISPOSITION_INFO disposition{.DeleteFile = TRUE};
  SetFileInformationByHandle(file.Handle(), FileDispositionInfo, &disposition, sizeof disposition);
}

enum class Replacement { kDone, kImpossible, kFailed };

Replacement ReplaceAtOnce(const std::wstring& path, const Attributes& attributes,
                          std::string_view octets) {
  RemoveDeadNewFiles(path);
  const File file = CreateBeside(path, attributes);
  if (!file) return Replacement::kImpossible;
  const bool written = Write(file, octets) && FlushFileBuffers(file.Handle()) != 0;
  if (written && TakeThePlace(file, path)) return Replacement::kDone;
  Remove(file);
  return written ? Replacement::kImpossible : Replacement::kFailed;
}

bool Overwrite(const std::wstring& path, std::string_view octets) {
  const File file = OpenForWriting(path);
  LARGE_INTEGER length;
  if (!file || GetFileSizeEx(file.Handle(), &length) == 0) return false;
  const auto size = static_cast<std::size_t>(length.QuadPart);
  // Writes the part beyond the old size first: a full disk then shows before old content is lost.
  const auto kept = octets.substr(0, size);
  if (!Seek(file, size) || !Write(file, octets.substr(kept.size()))) {
    CutAt(file, size);
    return false;
  }
  return Seek(file, 0) && Write(file, kept) && CutAt(file, octets.size());
}

}  // namespace

bool ReplaceFileContents(const std::string& name, std::string_view octets) {
  const std::wstring path = FullPath({name.begin(), name.end()});
  File old = OpenForWriting(path);
  if (!old) {
    return GetLastError() == ERROR_FILE_NOT_FOUND &&
           ReplaceAtOnce(path, {}, octets) == Replacement::kDone;
  }
  if (GetFileType(old.Handle()) != FILE_TYPE_DISK) return false;
  const std::wstring final = FinalPath(old);
  const std::wstring& target = final.empty() ? path : final;
  const Attributes attributes = AttributesOf(old);
  old.Close();  // an open file cannot be replaced
  const Replacement outcome = ReplaceAtOnce(target, attributes, octets);
  return outcome == Replacement::kDone ||
         (outcome == Replacement::kImpossible && Overwrite(target, octets));
}

}  // namespace orvane::platform
