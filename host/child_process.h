#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace host {

// Another process of this program, with a pipe to its standard input and one from its standard
// output. Ctrl-C does not reach it. Both differ between systems.
class ChildProcess {
 public:
  // Throws Failure (kReaderFault) if it can't be started.
  explicit ChildProcess(const std::vector<std::string>& arguments);
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  // Closes the pipe to it, and waits for its end.
  ~ChildProcess();

  int Input() const { return input_; }    // a descriptor to write to
  int Output() const { return output_; }  // a descriptor to read from, and to close then

  // Closes the pipe to it, waits for its end, and tells how it ended; empty for exit code 0.
  std::string WaitForEnd();

 private:
  std::intptr_t process_ = 0;
  int input_ = -1;
  int output_ = -1;
  std::string ending_;
  bool ended_ = false;
};

// Gives a descriptor of its own for standard output. What anything else in this process writes to
// standard output goes to standard error from now on.
int TakeStandardOutput();

}  // namespace host
