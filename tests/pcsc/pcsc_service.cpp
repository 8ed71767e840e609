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
constexpr char kProcessFile[] = "/run/pcscd/pcscd.pid";

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

/// Whether the process that left its number behind still is the service.
bool IsAlive() {
  std::string process;
  std::ifstream(kProcessFile) >> process;
  std::string number;
  std::string name;
  char state = 'Z';
  std::ifstream("/proc/" + process + "/stat") >> number >> name >> state;
  return name == "(pcscd)" && state != 'Z';
}

/// A service that is on its way out removes its files at the very end; one that was killed leaves
/// them, and the next one would take them for a sign that it runs. False if one lives on in
/// silence.
bool ClearLeftovers() {
  if (!WaitUntil([] { return !IsAlive(); })) return false;
  std::filesystem::remove(kProcessFile);
  std::filesystem::remove(kSocket);
  return true;
}

std::string ReadText(const std::string& path) {
  std::ifstream file(path);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

[[noreturn]] void BecomeService(const char* log, pid_t parent) {
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (getppid() != parent) _exit(1);
  const int output = open(log, O_WRONLY | O_CREAT | O_TRUNC, 0600);
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
  if (!folder_.empty()) std::filesystem::remove_all(folder_);
  close(lock_);
}

void PcscService::Start() {
  if (!ClearLeftovers()) {
    fault_ = "a pcscd runs that does not answer";
    return;
  }
  std::string folder = std::filesystem::temp_directory_path() / "orvane-pcscd-XXXXXX";
  folder_ = mkdtemp(folder.data());
  const std::string log = LogFile();
  const pid_t parent = getpid();
  process_ = fork();
  if (process_ == 0) BecomeService(log.c_str(), parent);
  const bool runs = WaitUntil([this] {
    if (process_ != -1 && waitpid(process_, nullptr, WNOHANG) == process_) process_ = -1;
    return process_ == -1 || Runs();
  });
  if (!runs || process_ == -1) fault_ = "pcscd did not start:\n" + ReadText(log);
}

void PcscService::Stop() {
  kill(process_, SIGTERM);
  const auto ended = [this] { return waitpid(process_, nullptr, WNOHANG) == process_; };
  if (WaitUntil(ended)) return;
  kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
}
