#include "host/run_program.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>

namespace host_test {
namespace {

std::string Content(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace

Folder::Folder()
    : path_(std::filesystem::temp_directory_path() /
            ("orvane-host-" + std::to_string(std::random_device()()))) {
  std::filesystem::create_directory(path_);
}

Folder::~Folder() {
  std::error_code error;
  std::filesystem::remove_all(path_, error);
}

std::string Folder::Path(std::string_view name) const { return (path_ / name).string(); }

std::string Folder::Write(std::string_view name, std::string_view content) const {
  std::ofstream(Path(name), std::ios::binary) << content;
  return Path(name);
}

Outcome RunOrvane(const Folder& folder, const std::string& arguments, std::string_view input,
                  const std::string& programFolder) {
  const std::string out = folder.Path("out");
  const std::string err = folder.Path("err");
  const std::string in = folder.Write("in", input);
  const std::string command =
      programFolder + "/orvane " + arguments + " <" + in + " >" + out + " 2>" + err;
  const int status = std::system(command.c_str());
  return {ExitCodeOf(status), Content(out), Content(err)};
}

}  // namespace host_test
