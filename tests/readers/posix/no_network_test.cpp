#include <gtest/gtest.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <iterator>

#include "readers/reader_host.h"

namespace orvane_test {
namespace {

// Whether this process now has a network of its own, which is the loopback interface alone.
bool EntersAnEmptyNetwork() {
  if (unshare(CLONE_NEWNET) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0) return false;
  ifreq loopback{};
  std::strcpy(loopback.ifr_name, "lo");
  loopback.ifr_flags = IFF_UP;
  const int any = socket(AF_INET, SOCK_DGRAM, 0);
  return ioctl(any, SIOCSIFFLAGS, &loopback) == 0;
}

// The address lies nowhere, and the system says so at once.
TEST(NoNetwork, IsNoConnection) {
  constexpr int kNoNamespace = 2;
  const pid_t child = fork();
  if (child == 0) {
    _exit(EntersAnEmptyNetwork() ? OpenReaderA("192.168.1.9:8000", ReaderKindTcp) : kNoNamespace);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  if (WEXITSTATUS(status) == kNoNamespace) GTEST_SKIP() << "needs the right to a network namespace";
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

// A host may try a machine that is not there as often as it likes.
TEST(NoConnection, LeavesNoSocketOpen) {
  const auto open = [] {
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    return std::distance(begin(descriptors), end(descriptors));
  };
  const auto before = open();
  for (int i = 0; i < 3; ++i) EXPECT_EQ(OpenReaderA("127.0.0.1:1", ReaderKindTcp), 0);
  EXPECT_EQ(open(), before);
}

}  // namespace
}  // namespace orvane_test
