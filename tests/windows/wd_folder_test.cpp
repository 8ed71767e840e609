// Which file the library takes for the WD vendor's: wdcrwx.dll in its own folder, whatever else has
// that name. The others here lack CT_open, so that a reader that opens was opened by the right one.
#include <gtest/gtest.h>

#include "support/library_copy.h"
#include "support/simulated_module.h"

namespace orvane_test {
namespace {

TEST(WdFolder, IsTheOnlyOneThatCounts) {
  const WorkingFolder above;
  // A name with characters that the ANSI code page lacks.
  const fs::path folder = fs::current_path() / u"\u0E27\u4E2D";
  fs::create_directory(folder);
  support::WriteModuleWithout("wdcrwx", "CT_open", folder);
  void* const loaded = support::LoadModule(folder / "wdcrwx.dll");
  EXPECT_EQ(OpenReaderA("WDUSB1", ReaderKindWd), 1) << "another of that name is loaded";
  EXPECT_EQ(OpenReader(1, -1, 9600), 0);
  support::UnloadModule(loaded);
  ASSERT_FALSE(support::IsLoaded("wdcrwx"));

  fs::current_path(folder);
  EXPECT_EQ(OpenReaderA("WDUSB1", ReaderKindWd), 1) << "another is in the current directory";
  EXPECT_EQ(OpenReader(1, -1, 9600), 0);
}

}  // namespace
}  // namespace orvane_test
