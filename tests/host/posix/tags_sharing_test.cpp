// The dictionary as a disk without room leaves it, and other processes.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>

#include "host/run_program.h"

namespace host_test {
namespace {

class SharedTags : public testing::Test {
 protected:
  WorkingFolder folder;
};

TEST_F(SharedTags, AreNotSaidToBeStoredWhereThereIsNoRoom) {
  const std::string text(1000, 'x');
  RunOrvane("tags import -", "57 Old | " + text + "\n58 Old | " + text + "\n");
  const auto before = ReadFile("dictdata.bin");
  for (const char* change : {"tags add 5A New", "tags remove 57", "tags import -"}) {
    WriteFile("in", "5A New\n");
    // No file may be longer than one block.
    const std::string program = "\"" ORVANE_BUILD_FOLDER "/orvane\" ";
    const int exitCode = RunInFolder("/bin/sh", "-c 'ulimit -f 1; exec " + program + change + "'");
    EXPECT_EQ(exitCode, 5) << change;
    EXPECT_EQ(ReadText("err"), "orvane: can't write dictdata.bin\n");
    EXPECT_EQ(ReadFile("dictdata.bin"), before);
  }
}

TEST_F(SharedTags, AreNoPipe) {
  ASSERT_EQ(mkfifo("dictdata.bin", 0666), 0);
  EXPECT_EQ(RunOrvane("tags list").err, "orvane: can't read dictdata.bin\n");
}

TEST_F(SharedTags, TakeTheChangesOfAll) {
  EXPECT_EQ(std::system("for tag in 0 1 2 3 4 5 6 7 8 9; do"
                        " '" ORVANE_BUILD_FOLDER "/orvane' tags add 5$tag Name & done; wait"),
            0);
  const std::string list = RunOrvane("tags list").out;
  EXPECT_EQ(std::count(list.begin(), list.end(), '\n'), 10) << list;
}

}  // namespace
}  // namespace host_test
