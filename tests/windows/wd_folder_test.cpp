// Which file the library takes for the WD vendor's: wdcrwx.dll in its own folder, whatever else has
// that name. The others here lack CT_open, so that a reader that opens was opened by the right one.
#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>

#include "orvane.h"
#include "support/module_loading.h"
#include "support/simulated_module.h"

namespace {

namespace fs = std::filesystem;

class WdFolder : public testing::Test {
 protected:
  WdFolder() {
    fs::create_directory(folder_);
    before_ = fs::current_path();
  }
  ~WdFolder() override {
    fs::current_path(before_);
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }

  // A name with characters that the ANSI code page lacks.
  const fs::path folder_ = fs::temp_directory_path() /
                           (L"orvane-\u0E27\u4E2D-" + std::to_wstring(std::random_device()()));
  fs::path before_;
};

TEST_F(WdFolder, IsTheOnlyOneThatCounts) {
  support::WriteModuleWithout("wdcrwx", "CT_open", folder_);
  std::string why;
  void* const loaded = support::LoadModule(folder_ / "wdcrwx.dll", why);
  ASSERT_NE(loaded, nullptr) << why;
  EXPECT_EQ(OpenReaderA("WDUSB1", ReaderKindWd), 1) << "another of that name is loaded";
  EXPECT_EQ(OpenReader(1, 13, 9600), 0);
  support::UnloadModule(loaded);
  ASSERT_FALSE(support::IsLoaded("wdcrwx"));

  fs::current_path(folder_);
  EXPECT_EQ(OpenReaderA("WDUSB1", ReaderKindWd), 1) << "another is in the current directory";
  EXPECT_EQ(OpenReader(1, 13, 9600), 0);
}

}  // namespace
