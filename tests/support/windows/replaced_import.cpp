#include "support/windows/replaced_import.h"

#include <windows.h>

#include <stdexcept>
#include <string>
#include <string_view>

namespace support {
namespace {

template <typename Entry>
Entry* At(HMODULE module, DWORD address) {
  return reinterpret_cast<Entry*>(reinterpret_cast<char*>(module) + address);
}

// Where the address of an imported function stands; null if there is none of this name.
void** FindPlace(HMODULE module, std::string_view function) {
  const auto* const start = At<IMAGE_DOS_HEADER>(module, 0);
  const auto* const headers = At<IMAGE_NT_HEADERS>(module, static_cast<DWORD>(start->e_lfanew));
  const IMAGE_DATA_DIRECTORY& table =
      headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  const auto* library = At<IMAGE_IMPORT_DESCRIPTOR>(module, table.VirtualAddress);
  for (; library->FirstThunk != 0; ++library) {
    const auto* name = At<IMAGE_THUNK_DATA>(module, library->OriginalFirstThunk);
    auto* address = At<IMAGE_THUNK_DATA>(module, library->FirstThunk);
    for (; name->u1.AddressOfData != 0; ++name, ++address) {
      if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
      const auto relative = static_cast<DWORD>(name->u1.AddressOfData);
      const char* const text = At<IMAGE_IMPORT_BY_NAME>(module, relative)->Name;
      if (text == function) return reinterpret_cast<void**>(&address->u1.Function);
    }
  }
  return nullptr;
}

void Put(void** place, void* address) {
  DWORD before = 0;
  VirtualProtect(place, sizeof *place, PAGE_READWRITE, &before);
  *place = address;
  VirtualProtect(place, sizeof *place, before, &before);
}

}  // namespace

ReplacedImport::ReplacedImport(const char* module, const char* function, void* replacement) {
  const HMODULE loaded = GetModuleHandleA(module);
  place_ = loaded != nullptr ? FindPlace(loaded, function) : nullptr;
  if (place_ == nullptr) {
    throw std::runtime_error(std::string(module) + " does not import " + function);
  }
  original_ = *place_;
  Put(place_, replacement);
}

ReplacedImport::~ReplacedImport() { Put(place_, original_); }

}  // namespace support
