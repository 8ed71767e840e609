// A copy of the library, with an engine, a dictionary and locks of its own, as another process has.
#pragma once

#include <stdexcept>

#include "support/module_loading.h"
#include "tags/working_folder.h"

namespace support {

// It stays loaded.
inline void* LoadLibraryCopy() {
  const std::string name = ModuleFileName("orvane");
  const auto folder = orvane_test::MakeTemporaryFolder();
  std::filesystem::copy_file(std::filesystem::path(ORVANE_BUILD_PATH) / name, folder / name);
  std::string why;
  void* const module = LoadModule(folder / name, why);
  std::error_code ignored;
  std::filesystem::remove_all(folder, ignored);
  if (module == nullptr) throw std::runtime_error(why);
  return module;
}

}  // namespace support
