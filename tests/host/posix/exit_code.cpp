#include <sys/wait.h>

#include "host/run_program.h"

namespace host_test {

int ExitCodeOf(int status) { return WIFEXITED(status) ? WEXITSTATUS(status) : -1; }

}  // namespace host_test
