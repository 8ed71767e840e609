#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "orvane.h"
#include "support/library_copy.h"

namespace {

namespace fs = std::filesystem;

class LogFiles : public testing::Test {
 protected:
  void SetUp() override {
    folder_ =
        fs::temp_directory_path() / (std::string("orvane_log_") +
                                     testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(folder_);
    fs::create_directories(folder_);
  }
  void TearDown() override { fs::remove_all(folder_); }

  std::string Path(const std::string& name) const { return (folder_ / name).string(); }
  static std::string Content(const std::string& path) {
    std::ifstream file(path);
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), {}};
  }

  fs::path folder_;
};

std::vector<unsigned char> Octets(std::size_t count) {
  std::vector<unsigned char> octets(count);
  for (std::size_t i = 0; i < count; ++i) octets[i] = static_cast<unsigned char>(i * 7 + i / 256);
  return octets;
}

std::string Hex(const std::vector<unsigned char>& octets) {
  std::string text(2 * octets.size(), ' ');
  HexToAscii(octets.data(), text.data(), static_cast<int>(octets.size()));
  return text;
}

TEST_F(LogFiles, GrowByEachEntry) {
  const std::string path = Path("log.txt");
  AsciiLog(path.c_str(), "");
  EXPECT_EQ(Content(path), "");
  std::ofstream(path) << "before\n";
  AsciiLog(path.c_str(), "one\n");
  AsciiLog(path.c_str(), "");
  const unsigned char octets[] = {0x0A, 0xFF};
  HexLog(path.c_str(), octets, 2);
  HexLog(path.c_str(), octets, 1);
  EXPECT_EQ(Content(path), "before\none\n0AFF0A");
}

TEST_F(LogFiles, TakeAnyNumberOfOctets) {
  for (const int count : {-2147483647 - 1, -1, 0, 1, 2047, 2048, 2049, 4096, 100'001}) {
    const std::string path = Path(std::to_string(count));
    const auto octets = Octets(count > 0 ? static_cast<std::size_t>(count) : 0);
    HexLog(path.c_str(), octets.data(), count);
    EXPECT_EQ(Content(path), Hex(octets)) << count;
  }
}

TEST_F(LogFiles, ThatCannotBeOpenedLeaveTheLockFree) {
  const unsigned char octet = 0x42;
  for (const std::string& path : {Path("missing/log.txt"), folder_.string(), std::string()}) {
    AsciiLog(path.c_str(), "lost");
    HexLog(path.c_str(), &octet, 1);
  }
  EXPECT_TRUE(fs::is_empty(folder_));
  // Another thread would wait for ever if the lock were still held.
  std::thread([&] { AsciiLog(Path("log.txt").c_str(), "kept"); }).join();
  EXPECT_EQ(Content(Path("log.txt")), "kept");
}

TEST_F(LogFiles, HoldWholeEntriesOfThreadsAndProcesses) {
  const std::string path = Path("log.txt");
  constexpr std::size_t kEntries = 300;
  const auto octets = Octets(5000);
  const std::string hex = Hex(octets), text = "<" + std::string(9000, 't') + "\n>";
  void* const copy = support::LoadLibraryCopy();
  const auto log = reinterpret_cast<decltype(AsciiLog)*>(support::FindExport(copy, "AsciiLog"));
  const auto write = [&](decltype(AsciiLog)* entry) {
    for (std::size_t i = 0; i < kEntries; ++i) entry(path.c_str(), text.c_str());
  };
  std::thread other(write, AsciiLog), elsewhere(write, log);
  for (std::size_t i = 0; i < kEntries; ++i) HexLog(path.c_str(), octets.data(), 5000);
  other.join();
  elsewhere.join();

  const std::string content = Content(path);
  ASSERT_EQ(content.size(), kEntries * (hex.size() + 2 * text.size()));
  for (std::size_t at = 0; at < content.size();) {
    const std::string& entry = content[at] == '<' ? text : hex;
    ASSERT_EQ(content.compare(at, entry.size(), entry), 0) << at;
    at += entry.size();
  }
}

}  // namespace
