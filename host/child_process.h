#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace host {

// Another process of this program, with pipes to its standard input and from its standard output.
// Ctrl-C does not reach it.
class ChildProcess {
 public:
  // Throws Failure (kReaderFault) if it cannot be started.
  explicit ChildProcess(const std::vector<std::string>& arguments);
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  // Closes its standard input and waits for its end.
  ~ChildProcess();

  int Input() const { return input_; }    // a descriptor to write to
  int Output() const { return output_; }  // a descriptor to read from; the caller closes it

  // Closes its standard input, waits for its end, and says how it ended; empty for exit code 0.
  std::string WaitForEnd();

 private:
  std::intptr_t process_ = 0;
  int input_ = -1;
  int output_ = -1;
  std::string ending_;
  bool ended_ = false;
};

// Gives a new descriptor for standard output. From now on, everything else that this process writes
// to standard output goes to standard error.
int TakeStandardOutput();

}  // namespace host
