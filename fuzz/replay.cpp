// Runs files through a fuzz target: fuzz_NAME FILE|FOLDER...
// A folder stands for the files in it. Fails if there is none.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Path = std::filesystem::path;

std::vector<Path> FilesOf(const Path& path) {
  if (!std::filesystem::is_directory(path)) return {path};
  std::vector<Path> files;
  for (const auto& entry : std::filesystem::directory_iterator(path)) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

bool Replay(const Path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return false;
  const std::string bytes{std::istreambuf_iterator<char>(file), {}};
  // An area of just this size, so that reading behind it shows.
  const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
  std::fprintf(stderr, "%s\n", path.filename().string().c_str());
  LLVMFuzzerTestOneInput(input.data(), input.size());
  return true;
}

}  // namespace

int main(int count, char** arguments) {
  std::vector<Path> files;
  for (int i = 1; i < count; ++i) {
    // A target may change the current folder.
    for (const Path& file : FilesOf(std::filesystem::absolute(arguments[i]))) files.push_back(file);
  }
  const bool done = !files.empty() && std::all_of(files.begin(), files.end(), Replay);
  std::fprintf(stderr, "%zu inputs%s\n", files.size(), done ? "" : ": failed");
  return done ? 0 : 1;
}
