#include <gtest/gtest.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>

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

}  // namespace
}  // namespace orvane_test
