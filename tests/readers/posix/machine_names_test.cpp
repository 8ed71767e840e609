#include <gtest/gtest.h>

#include <cstdlib>

#include "readers/reader_host.h"

namespace orvane_test {
namespace {

TEST(MachineNames, AreInTheLocalesCharacterSet) {
  setenv("LC_ALL", "C", 1);
  EXPECT_EQ(List(ReaderKindTcp, 2, 1),
            (std::vector<std::string>{"10 1 1 加密机1", "10 1 2 加密机2"}));
  EXPECT_EQ(List(ReaderKindTcp, 20, 0).back(), "10 1 16 加密机16");
  unsetenv("LC_ALL");
}

}  // namespace
}  // namespace orvane_test
