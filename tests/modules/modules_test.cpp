#include "support/library_copy.h"

namespace orvane_test {
namespace {

const std::string kLibrary = support::ModuleFileName("orvane");

TEST_F(LibraryCopy, KeepsItsVariablesWhenItIsUnloaded) {
  void* library = LoadLibraryCopy(root_);
  EXPORT_OF(library, SetVarValue)("%KEPT", "1234");
  support::UnloadModule(library);
  library = support::LoadModule(root_ / kLibrary);
  EXPECT_EQ(Run(library, "%KEPT"), "1234");
}

TEST_F(LibraryCopy, CallsItsOwnFunctions) {
  void* const library = LoadLibraryCopy(root_);
  char digits[9] = "";
  std::int32_t value = 0;
  EXPORT_OF(library, IntToHexStr)(digits, 0x1234, &value);
  EXPECT_STREQ(digits, "1234");
  EXPORT_OF(library, HexStrToInt)("1234", &value, 4);
  EXPECT_EQ(value, 0x1234);
}

TEST_F(LibraryCopy, TakesTheModuleThatItsHostHasLoaded) {
  Copy(kBuild, {"orvane"}, root_ / "library");
  Copy(kVendor, {"orvane_second", "dcrf32"}, root_ / "vendor");
  fs::current_path(root_ / "vendor");
  support::LoadModule(fs::path(".") / support::ModuleFileName("dcrf32"));
  fs::current_path(root_);
  void* const library = support::LoadModule(root_ / "library" / kLibrary);
  EXPECT_TRUE(OpensD8(library));
}

void CopyAll(const fs::path& folder) {
  Copy(kBuild, {"orvane", "orvane_crypto", "wdcrwx"}, folder);
  Copy(kVendor, {"orvane_second", "dcrf32"}, folder);
}

// What stands beside it and what that needs there, wherever its host has gone since.
TEST_F(LibraryCopy, LooksInTheFolderThatItWasLoadedFrom) {
  const fs::path folder = fs::path(u8"bau ö (1)") / u8"Проект 中文";
  CopyAll(root_ / folder);
  fs::current_path(root_);
  void* const library = support::LoadModule(folder / kLibrary);
  PutFalseCryptoModule(root_ / "elsewhere" / folder);
  fs::current_path(root_ / "elsewhere");
  ExpectAll(library);
}

TEST_F(LibraryCopy, MayStandDeep) {
  fs::path folder = root_;
  for (int i = 0; i < 3; ++i) folder /= std::string(100, 'a');
  CopyAll(folder);
  void* const library = support::LoadModule(folder / kLibrary);
  ExpectAll(library);
}

}  // namespace
}  // namespace orvane_test
