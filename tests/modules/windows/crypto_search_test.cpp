// Where the crypto module comes from, with one in every other place that has its name alone.
#include <windows.h>

#include "support/library_copy.h"

namespace orvane_test {
namespace {

class CryptoSearch : public LibraryCopy {
 protected:
  CryptoSearch() {
    Copy(kBuild, {"orvane"}, root_ / "library");
    for (const char* folder : {"current", "path"}) PutFalseCryptoModule(root_ / folder);
    fs::current_path(root_ / "current");
    SetEnvironmentVariableW(L"PATH", (root_ / "path").c_str());
  }

  void* LoadLibrary() { return support::LoadModule(root_ / "library" / "orvane.dll"); }
};

TEST_F(CryptoSearch, PassesOverTheCurrentFolderAndPath) {
  void* const library = LoadLibrary();
  EXPECT_FALSE(Encrypts(library));
  Copy(kBuild, {"orvane_crypto"}, root_ / "library");
  EXPECT_TRUE(Encrypts(library));
}

TEST_F(CryptoSearch, TakesAFolderOfTheHostBeforeItsOwn) {
  Copy(kBuild, {"orvane_crypto"}, root_ / "added");
  Copy(kVendor, {"orvane_second", "dcrf32"}, root_ / "added");
  PutFalseCryptoModule(root_ / "library");
  AddDllDirectory((root_ / "added").make_preferred().c_str());
  void* const library = LoadLibrary();
  EXPECT_TRUE(Encrypts(library));
  EXPECT_TRUE(OpensD8(library)) << "so for the libraries of makers";
}

TEST_F(CryptoSearch, TakesALoadedOneBeforeAll) {
  Copy(kBuild, {"orvane_crypto"}, root_ / "loaded");
  PutFalseCryptoModule(root_ / "library");
  PutFalseCryptoModule(root_ / "added");
  AddDllDirectory((root_ / "added").make_preferred().c_str());
  support::LoadModule(root_ / "loaded" / "orvane_crypto.dll");
  EXPECT_TRUE(Encrypts(LoadLibrary()));
}

}  // namespace
}  // namespace orvane_test
