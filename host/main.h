#pragma once

#include <string>
#include <vector>

namespace host {

// Runs the program. The arguments are in UTF-8, without the program's name. Gives the exit code.
int Main(std::vector<std::string> arguments);

}  // namespace host
