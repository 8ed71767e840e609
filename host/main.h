#pragma once

#include <string>
#include <vector>

namespace host {

// Runs the program with its arguments, in UTF-8, without its own name. Gives the exit code.
int Main(std::vector<std::string> arguments);

}  // namespace host
