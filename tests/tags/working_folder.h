#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <random>
#include <string>

namespace orvane_test {

inline std::filesystem::path MakeTemporaryFolder() {
  const std::string name = "orvane-test-" + std::to_string(std::random_device()());
  const auto folder = std::filesystem::temp_directory_path() / name;
  return std::filesystem::create_directory(folder) ? folder : MakeTemporaryFolder();
}

// The current directory for as long as this lives: an empty one, removed with all that is in it.
class WorkingFolder {
 public:
  WorkingFolder() { std::filesystem::current_path(path_); }
  WorkingFolder(const WorkingFolder&) = delete;
  WorkingFolder& operator=(const WorkingFolder&) = delete;
  ~WorkingFolder() {
    std::error_code ignored;
    std::filesystem::current_path(before_, ignored);
    std::filesystem::remove_all(path_, ignored);
  }

 private:
  std::filesystem::path before_ = std::filesystem::current_path();
  std::filesystem::path path_ = MakeTemporaryFolder();
};

inline void WriteFile(const std::filesystem::path& path, const std::string& octets) {
  std::ofstream(path, std::ios::binary) << octets;
}

// None if there is no such file.
inline std::optional<std::string> ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(file), {});
}

inline std::ptrdiff_t FilesIn(const std::filesystem::path& folder) {
  return std::distance(std::filesystem::directory_iterator(folder), {});
}

}  // namespace orvane_test
