#include "support/library_copy.h"

namespace orvane_test {
namespace {

class ModulesFolder : public LibraryCopy {
 protected:
  // Loaded through a link from elsewhere, with modules in orvane/ below its own folder.
  void* Load() {
    const std::string file = support::ModuleFileName("orvane");
    Copy(kBuild, {"orvane"}, root_ / "lib");
    Copy(kBuild, {"orvane_crypto", "wdcrwx"}, modules_);
    Copy(kVendor, {"orvane_second", "dcrf32"}, modules_);
    fs::create_directories(root_ / "link");
    fs::create_symlink(root_ / "lib" / file, root_ / "link" / file);
    return support::LoadModule(root_ / "link" / file);
  }

  const fs::path modules_ = root_ / "lib" / "orvane";
};

// But for WD's library, which comes from the library's own folder alone.
TEST_F(ModulesFolder, IsLookedThrough) {
  void* const library = Load();
  EXPECT_TRUE(Encrypts(library));
  EXPECT_TRUE(OpensD8(library));
  EXPECT_EQ(EXPORT_OF(library, OpenReaderA)("WDUSB1", ReaderKindWd), 0);
}

TEST_F(ModulesFolder, ComesBehindTheLibrarysOwn) {
  PutFalseCryptoModule(root_ / "lib");
  EXPECT_FALSE(Encrypts(Load()));
}

}  // namespace
}  // namespace orvane_test
