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

constexpr int kNoNamespace = 2;

// Whether this process now has a network of its own, which is the loopback interface alone.
bool EntersAnEmptyNetwork() {
  if (unshare(CLONE_NEWNET) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0) return false;
  ifreq loopback{};
  std::strcpy(loopback.ifr_name, "lo");
  loopback.ifr_flags = IFF_UP;
  const int any = socket(AF_INET, SOCK_DGRAM, 0);
  return ioctl(any, SIOCSIFFLAGS, &loopback) == 0;
}

// What OpenReaderA gives for the name there; kNoNamespace if there is no such place.
int OpensWithoutNetwork(const char* name) {
  const pid_t child = fork();
  if (child == 0) _exit(EntersAnEmptyNetwork() ? OpenReaderA(name, ReaderKindTcp) : kNoNamespace);
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// The address lies nowhere, and the system says so at once.
TEST(NoNetwork, IsNoConnection) {
  const int opened = OpensWithoutNetwork("192.168.1.9:8000");
  if (opened == kNoNamespace) GTEST_SKIP() << "needs the right to make a network namespace";
  EXPECT_EQ(opened, 0);
  EXPECT_EQ(OpensWithoutNetwork("127.0.0.1:8000"), 0);  // here nobody listens
}

}  // namespace
}  // namespace orvane_test
