// The library in a folder that a test fills, as a host loads it that was not linked with it: with
// an engine, a dictionary and locks of its own, as another process has.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <initializer_list>
#include <string>

#include "orvane.h"
#include "support/module_loading.h"
#include "tags/working_folder.h"

namespace orvane_test {

namespace fs = std::filesystem;

const fs::path kBuild = u8"" ORVANE_BUILD_FOLDER;
const fs::path kVendor = kBuild / "tests" / "fake_vendor";

#define EXPORT_OF(library, name) \
  reinterpret_cast<decltype(&name)>(support::FindExport(library, #name))

// Copies modules; the folder is made.
inline void Copy(const fs::path& from, std::initializer_list<const char*> names,
                 const fs::path& to) {
  fs::create_directories(to);
  for (const char* name : names) {
    const std::string file = support::ModuleFileName(name);
    fs::remove(to / file);
    fs::copy_file(from / file, to / file);
  }
}

// A copy of the library in that folder, which stays loaded.
inline void* LoadLibraryCopy(const fs::path& folder) {
  Copy(kBuild, {"orvane"}, folder);
  return support::LoadModule(folder / support::ModuleFileName("orvane"));
}

inline void* LoadLibraryCopy() {
  const fs::path folder = MakeTemporaryFolder();
  void* const module = LoadLibraryCopy(folder);
  std::error_code ignored;
  fs::remove_all(folder, ignored);
  return module;
}

// The library stays loaded, so its folder is emptied by the next run of the test.
class LibraryCopy : public testing::Test {
 protected:
  LibraryCopy() {
    std::error_code ignored;  // below a deep folder this can't be done everywhere
    fs::remove_all(root_, ignored);
    fs::create_directories(root_);
  }
  ~LibraryCopy() override { fs::current_path(kBuild); }

  // A module of the crypto module's name that has none of its functions.
  static void PutFalseCryptoModule(const fs::path& folder) {
    fs::create_directories(folder);
    fs::copy_file(kVendor / support::ModuleFileName("orvane_second"),
                  folder / support::ModuleFileName("orvane_crypto"));
  }

  static std::string Run(void* library, const char* statement) {
    char result[512];
    EXPORT_OF(library, RunScript)(statement, result);
    return result;
  }

  // Whether the default crypto module is the one that answers.
  static bool Encrypts(void* library) {
    return Run(library, "@des(0101010101010101,8000000000000000,1)") == "95F8A5E5DD31D900";
  }

  static bool OpensD8(void* library) {
    return EXPORT_OF(library, OpenReaderA)("COM1", ReaderKindD8) == 1;
  }

  static void ExpectAll(void* library) {
    EXPECT_TRUE(Encrypts(library));
    EXPECT_TRUE(OpensD8(library));
    EXPECT_EQ(EXPORT_OF(library, OpenReaderA)("WDUSB1", ReaderKindWd), 1);
  }

  const fs::path root_ =
      kBuild / "tests" /
      (std::string("modules_") + testing::UnitTest::GetInstance()->current_test_info()->name());
};

}  // namespace orvane_test
