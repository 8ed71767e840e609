// A system without /proc, as in small containers.
#include <gtest/gtest.h>
#include <unistd.h>

#include "host/run_program.h"

namespace host_test {
namespace {

TEST(NoProc, LoadsNoSimulatorsOfTheCurrentFolder) {
  const WorkingFolder folder;
  const std::string hide =
      (geteuid() == 0 ? "-m" : "-rm") + std::string(" sh -c 'mount -t tmpfs none /proc");
  WriteFile("in", "@reset()\n");
  if (RunInFolder("unshare", hide + "'") != 0) GTEST_SKIP() << "needs the right to a namespace";
  std::filesystem::create_directory_symlink(ORVANE_BUILD_FOLDER "/simulators", "simulators");
  const std::string run = " && LD_LIBRARY_PATH=\"" ORVANE_BUILD_FOLDER
                          "\" exec \"" ORVANE_BUILD_FOLDER "/orvane\" run --simulate -'";
  EXPECT_EQ(RunInFolder("unshare", hide + run), 4);
  EXPECT_TRUE(Shows(ReadText("err"), "does not tell where this program stands")) << ReadText("err");
}

}  // namespace
}  // namespace host_test
