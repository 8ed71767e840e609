#include "host/run_program.h"

#include <sys/wait.h>

#include <cstdlib>

namespace host_test {

int RunInFolder(const std::string& program, const std::string& arguments) {
  const int status = std::system(('\'' + program + "' " + arguments + " <in >out 2>err").c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace host_test
