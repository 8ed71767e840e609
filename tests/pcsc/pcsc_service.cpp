#include "pcsc_service.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
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

enum class State { Absent, Refuses, Serves };

// A service that asks polkit hangs up on a client that it may not serve. This one asks for the
// protocol's version.
State AskService() {
  const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strcpy(address.sun_path, kSocket);
  State state = State::Absent;
  if (connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
    const std::uint32_t length = 12, command = 0x11;
    const std::uint32_t question[] = {length, command, 4, 4, 0};
    char answer[length];
    const bool answered =
        send(connection, question, sizeof question, MSG_NOSIGNAL) == sizeof question &&
        recv(connection, answer, sizeof answer, 0) > 0;
    state = answered ? State::Serves : State::Refuses;
  }
  close(connection);
  return state;
}

bool Runs() { return AskService() != State::Absent; }

// The last lines that the service wrote.
std::string Log() {
  std::ifstream in(kLog);
  const std::string log(std::istreambuf_iterator<char>(in), {});
  return log.substr(log.size() - std::min<std::size_t>(log.size(), 1000));
}

// One that asks polkit would need that to run, too; not all of them know the option.
bool KnowsPolkit() {
  return std::system((std::string(kProgram) + " --help | grep -q -e --disable-polkit").c_str()) ==
         0;
}

std::string WhatIsLacking() {
  if (!std::filesystem::exists(kReaderDriver)) return "package vsmartcard-vpcd";
  const State state = AskService();
  if (state == State::Refuses) return "polkit's leave to use the pcscd that runs";
  if (state == State::Serves) return {};
  if (!std::filesystem::exists(kProgram)) return "package pcscd";
  if (geteuid() != 0) return "a running pcscd, or the right to start one (root)";
  return {};
}

[[noreturn]] void BecomeService(pid_t parent, const char* option) {
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (getppid() != parent) _exit(1);
  const int output = open(kLog, O_WRONLY | O_CREAT | O_TRUNC, 0600);
  dup2(output, STDOUT_FILENO);
  dup2(output, STDERR_FILENO);
  execl(kProgram, kProgram, "--foreground", "--info", option, nullptr);
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
  const char* option = KnowsPolkit() ? "--disable-polkit" : nullptr;
  const bool runs = WaitUntil([this, option] {
    if (process_ != -1 && waitpid(process_, nullptr, WNOHANG) == process_) process_ = -1;
    if (process_ != -1) return Runs();
    const pid_t parent = getpid();
    process_ = fork();
    if (process_ == 0) BecomeService(parent, option);
    return false;
  });
  if (!runs) fault_ = "pcscd did not start:\n" + Log();
  if (runs && AskService() == State::Refuses)
    lack_ = "polkit's leave to use pcscd, which wrote:\n" + Log();
}

void PcscService::Stop() {
  kill(process_, SIGTERM);
  const auto ended = [this] { return waitpid(process_, nullptr, WNOHANG) == process_; };
  if (WaitUntil(ended)) return;
  kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
}
