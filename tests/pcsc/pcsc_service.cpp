#include "pcsc_service.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "wait.h"

namespace {

constexpr char kProgram[] = "/usr/sbin/pcscd";
constexpr char kReaderDriver[] = "/usr/lib/pcsc/drivers/serial/libifdvpcd.so";
constexpr char kSocket[] = "/run/pcscd/pcscd.comm";
constexpr char kLog[] = ORVANE_BUILD_FOLDER "/tests/pcscd.log";

bool Runs() {
  const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strcpy(address.sun_path, kSocket);
  const bool accepted =
      connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  close(connection);
  return accepted;
}

std::string WhatIsLacking() {
  if (!std::filesystem::exists(kReaderDriver)) return "package vsmartcard-vpcd";
  if (Runs()) return {};
  if (!std::filesystem::exists(kProgram)) return "package pcscd";
  if (geteuid() != 0) return "a running pcscd, or the right to start one (root)";
  return {};
}

[[noreturn]] void BecomeService(pid_t parent) {
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (getppid() != parent) _exit(1);
  const int output = open(kLog, O_WRONLY | O_CREAT | O_TRUNC, 0600);
  dup2(output, STDOUT_FILENO);
  dup2(output, STDERR_FILENO);
  execl(kProgram, kProgram, "--foreground", "--info", nullptr);
  _exit(1);
}

}  // namespace

PcscService::PcscService() : lock_(open(kProgram, O_RDONLY | O_CLOEXEC)) {
  flock(lock_, LOCK_EX);
  lack_ = WhatIsLacking();
  if (lack_.empty() && !Runs()) Start();
}

PcscService::~PcscService() {
  if (process_ != -1) Stop();
  close(lock_);
}

// One that is on its way out keeps another from starting, so this tries again and again.
void PcscService::Start() {
  const bool runs = WaitUntil([this] {
    if (process_ != -1 && waitpid(process_, nullptr, WNOHANG) == process_) process_ = -1;
    if (process_ != -1) return Runs();
    const pid_t parent = getpid();
    process_ = fork();
    if (process_ == 0) BecomeService(parent);
    return false;
  });
  std::ifstream log(kLog);
  if (!runs)
    fault_ = "pcscd did not start:\n" + std::string(std::istreambuf_iterator<char>(log), {});
}

void PcscService::Stop() {
  kill(process_, SIGTERM);
  const auto ended = [this] { return waitpid(process_, nullptr, WNOHANG) == process_; };
  if (WaitUntil(ended)) return;
  kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
}
