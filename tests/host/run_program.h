#pragma once

#include <gtest/gtest.h>

#include <sstream>
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

// Runs a program with arguments as a shell takes them, where only single quotes are used. The
// files `in`, `out` and `err` of the current folder are its standard input, output and error.
// At the end of the arguments <&-, >&- or
// 2>&- closes one of them. Gives the exit code; -1 if it ended otherwise.
int RunInFolder(const std::string& program, const std::string& arguments);

// With line ends that are line feeds, whatever the platform stores.
inline std::string ReadText(const char* file) {
  std::ifstream text(file);
  return {std::istreambuf_iterator<char>(text), {}};
}

// Runs the program `orvane` in the current folder, with arguments as a shell takes them, and input
// as standard input. The program stands in the build's folder or in another one.
inline Outcome RunOrvane(const std::string& arguments, const std::string& input = "",
                         const std::string& programFolder = ORVANE_BUILD_FOLDER) {
  WriteFile("in", input);
  const int exitCode = RunInFolder(programFolder + "/orvane", arguments);
  return {exitCode, ReadText("out"), ReadText("err")};
}

// The text shows the parts in this order; they have | between them.
inline void ExpectInOrder(const std::string& text, const std::string& parts) {
  std::istringstream in(parts);
  size_t at = 0;
  for (std::string part; std::getline(in, part, '|'); at += part.size()) {
    at = text.find(part, at);
    ASSERT_NE(at, text.npos) << part << " is missing in:\n" << text;
  }
}

inline bool Shows(const std::string& text, const std::string& part) {
  return text.find(part) != text.npos;
}

}  // namespace host_test
