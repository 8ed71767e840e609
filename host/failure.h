#pragma once

#include <stdexcept>
#include <string>

namespace host {

// The program's exit codes; --help lists them.
enum ExitCode {
  kDone = 0,
  kExpectationFailed = 1,
  kUsageFault = 2,
  kScriptFault = 3,
  kReaderFault = 4,
  kFileFault = 5,
  kInterrupted = 130,
};

// Ends a run: one message for the user, and the exit code.
class Failure : public std::runtime_error {
 public:
  Failure(ExitCode code, const std::string& message) : std::runtime_error(message), code_(code) {}
  ExitCode Code() const { return code_; }

 private:
  ExitCode code_;
};

// A failure in a script. Its message begins with FILE:LINE.
class ScriptFailure : public Failure {
 public:
  using Failure::Failure;
};

// Prints a failure on standard error, line by line, each as Printable shows it. Failures are
// printed nowhere else.
void PrintFailure(const Failure& failure);

}  // namespace host
