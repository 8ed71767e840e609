#ifndef TESTS_HOST_RUN_PROGRAM_H
#define TESTS_HOST_RUN_PROGRAM_H

#include <filesystem>
#include <string>
#include <string_view>

namespace host_test {

struct Outcome {
  int exitCode;  // -1 if the program ended otherwise than by an exit
  std::string out;
  std::string err;
};

// A folder of its own for one test, removed at its end.
class Folder {
 public:
  Folder();
  ~Folder();
  // Writes a file byte by byte and gives its path.
  std::string Write(std::string_view name, std::string_view content) const;
  std::string Path(std::string_view name) const;

 private:
  std::filesystem::path path_;
};

// Runs the program `orvane` with arguments as a shell takes them, and input as standard input. The
// program stands in the build's folder or in another one.
Outcome RunOrvane(const Folder& folder, const std::string& arguments, std::string_view input = "",
                  const std::string& programFolder = ORVANE_BUILD_FOLDER);

// The exit code in what std::system gave; -1 if there was none.
int ExitCodeOf(int status);

}  // namespace host_test

#endif
