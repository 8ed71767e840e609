// A copy of the library, with an engine, a dictionary and locks of its own, as another process has.
#pragma once

#include <stdexcept>

#include "support/module_loading.h"
#include "tags/working_folder.h"

namespace support {

// The copy is put into the folder and stays loaded.
inline void* LoadLibraryCopy(const std::filesystem::path& folder) {
  const std::string name = ModuleFileName("orvane");
  std::filesystem::copy_file(std::filesystem::path(u8"" ORVANE_BUILD_FOLDER) / name, folder / name);
  std::string why;
  void* const module = LoadModule(folder / name, why);
  if (module == nullptr) throw std::runtime_error(why);
  return module;
}

inline void* LoadLibraryCopy() {
  const auto folder = orvane_test::MakeTemporaryFolder();
  void* const module = LoadLibraryCopy(folder);
  std::error_code ignored;
  std::filesystem::remove_all(folder, ignored);
  return module;
}

}  // namespace support
