#include "support/export_names.h"

#include <windows.h>

#include <cstring>

namespace support {
namespace {

template <typename Entry>
Entry* At(std::vector<char>& file, size_t offset) {
  return reinterpret_cast<Entry*>(file.data() + offset);
}

// Where in the file the octets stand that are loaded at this relative address.
size_t FileOffset(std::vector<char>& file, const IMAGE_NT_HEADERS& headers, DWORD address) {
  const IMAGE_SECTION_HEADER* section = IMAGE_FIRST_SECTION(&headers);
  for (WORD i = 0; i < headers.FileHeader.NumberOfSections; ++i, ++section) {
    const DWORD distance = address - section->VirtualAddress;
    if (address >= section->VirtualAddress && distance < section->SizeOfRawData) {
      return section->PointerToRawData + distance;
    }
  }
  return file.size();
}

}  // namespace

// The names stand in two arrays in step, sorted for a binary search: closing the gap keeps both.
bool HideExport(std::vector<char>& file, const std::string& name) {
  const auto& headers =
      *At<IMAGE_NT_HEADERS>(file, static_cast<size_t>(At<IMAGE_DOS_HEADER>(file, 0)->e_lfanew));
  const DWORD address =
      headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT].VirtualAddress;
  const auto locate = [&](DWORD relative) { return FileOffset(file, headers, relative); };
  auto& exports = *At<IMAGE_EXPORT_DIRECTORY>(file, locate(address));
  DWORD* const names = At<DWORD>(file, locate(exports.AddressOfNames));
  WORD* const ordinals = At<WORD>(file, locate(exports.AddressOfNameOrdinals));
  for (DWORD i = 0; i < exports.NumberOfNames; ++i) {
    if (name != At<char>(file, locate(names[i]))) continue;
    const DWORD behind = --exports.NumberOfNames - i;
    std::memmove(names + i, names + i + 1, behind * sizeof *names);
    std::memmove(ordinals + i, ordinals + i + 1, behind * sizeof *ordinals);
    return true;
  }
  return false;
}

}  // namespace support
