#pragma once

#include <cstdlib>
#include <string>

#include "tags/working_folder.h"

namespace host_test {

using orvane_test::ReadFile;
using orvane_test::WorkingFolder;
using orvane_test::WriteFile;

struct Outcome {
  int exitCode;  // -1 if the program ended otherwise than by an exit
  std::string out;
  std::string err;
};

/// The exit code in what std::system gave; -1 if there was none.
int ExitCodeOf(int status);

/// Runs the program `orvane` in the current folder, with arguments as a shell takes them, and input
/// as standard input. The program stands in the build's folder or in another one.
inline Outcome RunOrvane(const std::string& arguments, const std::string& input = "",
                         const std::string& programFolder = ORVANE_BUILD_FOLDER) {
  WriteFile("in", input);
  const std::string command = programFolder + "/orvane " + arguments + " <in >out 2>err";
  const int exitCode = ExitCodeOf(std::system(command.c_str()));
  return {exitCode, *ReadFile("out"), *ReadFile("err")};
}

inline bool Shows(const std::string& text, const std::string& part) {
  return text.find(part) != text.npos;
}

}  // namespace host_test
