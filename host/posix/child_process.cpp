#include "host/child_process.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

#include "host/failure.h"

namespace host {
namespace {

std::string Describe(int status) {
  if (WIFSIGNALED(status)) return "signal " + std::to_string(WTERMSIG(status));
  return WEXITSTATUS(status) == 0 ? "" : "exit code " + std::to_string(WEXITSTATUS(status));
}

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& arguments) {
  std::vector<char*> list = {const_cast<char*>("orvane")};
  for (const std::string& each : arguments) list.push_back(const_cast<char*>(each.c_str()));
  list.push_back(nullptr);
  std::array<int, 2> in{}, out{};
  const bool piped = pipe2(in.data(), O_CLOEXEC) == 0 && pipe2(out.data(), O_CLOEXEC) == 0;
  const pid_t child = piped ? fork() : -1;
  if (child == 0) {
    std::signal(SIGINT, SIG_IGN);
    std::signal(SIGPIPE, SIG_DFL);
    dup2(in[0], STDIN_FILENO);
    dup2(out[1], STDOUT_FILENO);
    execv("/proc/self/exe", list.data());
    _exit(127);
  }
  if (child < 0) {
    throw Failure(kReaderFault, "can't start a worker: " + std::generic_category().message(errno));
  }
  close(in[0]);
  close(out[1]);
  process_ = child;
  input_ = in[1];
  output_ = out[0];
}

ChildProcess::~ChildProcess() { WaitForEnd(); }

std::string ChildProcess::WaitForEnd() {
  if (ended_) return ending_;
  close(input_);
  int status = 0;
  while (waitpid(static_cast<pid_t>(process_), &status, 0) < 0 && errno == EINTR) continue;
  ended_ = true;
  return ending_ = Describe(status);
}

int TakeStandardOutput() {
  std::signal(SIGPIPE, SIG_IGN);
  const int taken = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
  dup2(STDERR_FILENO, STDOUT_FILENO);
  return taken;
}

}  // namespace host
