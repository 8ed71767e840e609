#include "host/run_program.h"

#include <sys/wait.h>

#include <cstdlib>

namespace host_test {

int RunInFolder(const std::string& program, const std::string& arguments) {
  // What the arguments redirect comes later and counts.
  const int status = std::system(("<in >out 2>err '" + program + "' " + arguments).c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace host_test
