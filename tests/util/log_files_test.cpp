#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "orvane.h"

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
  ASSERT_TRUE(fs::exists(path));
  EXPECT_EQ(Content(path), "");
  AsciiLog(path.c_str(), "one\n");
  AsciiLog(path.c_str(), "");
  AsciiLog(path.c_str(), "two");
  const unsigned char octets[] = {0x0A, 0xFF};
  HexLog(path.c_str(), octets, 2);
  HexLog(path.c_str(), octets, 1);
  EXPECT_EQ(Content(path), "one\ntwo0AFF0A");
}

TEST_F(LogFiles, KeepWhatWasThere) {
  const std::string path = Path("log.txt");
  std::ofstream(path) << "before\n";
  AsciiLog(path.c_str(), "after");
  EXPECT_EQ(Content(path), "before\nafter");
}

TEST_F(LogFiles, AreCreatedByAnEntryOfNoOctets) {
  for (const int count : {0, -1, -2147483647 - 1}) {
    const std::string path = Path("count" + std::to_string(count));
    HexLog(path.c_str(), nullptr, count);
    ASSERT_TRUE(fs::exists(path));
    EXPECT_EQ(Content(path), "");
  }
}

TEST_F(LogFiles, TakeAnyNumberOfOctets) {
  for (const std::size_t count : {1U, 2047U, 2048U, 2049U, 4096U, 100'001U}) {
    const std::string path = Path(std::to_string(count));
    const auto octets = Octets(count);
    HexLog(path.c_str(), octets.data(), static_cast<int>(count));
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

TEST_F(LogFiles, HoldWholeEntriesOfManyThreads) {
  const std::string paths[] = {Path("first.txt"), Path("second.txt")};
  constexpr int kEntries = 200;
  // More octets than are converted at a time, so that one entry is several writes.
  const auto octets = Octets(5000);
  const std::string hex = Hex(octets);
  const std::string text = "<" + std::string(9000, 't') + ">";
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&, i] {
      for (int entry = 0; entry < kEntries; ++entry) {
        const char* const path = paths[(entry + i / 2) % 2].c_str();
        if (i % 2 == 0) {
          AsciiLog(path, text.c_str());
        } else {
          HexLog(path, octets.data(), static_cast<int>(octets.size()));
        }
      }
    });
  }
  for (auto& thread : threads) thread.join();

  int texts = 0, dumps = 0;
  for (const std::string& path : paths) {
    const std::string content = Content(path);
    for (std::size_t at = 0; at < content.size();) {
      const bool isText = content[at] == '<';
      const std::string& entry = isText ? text : hex;
      ASSERT_EQ(content.compare(at, entry.size(), entry), 0) << at;
      ++(isText ? texts : dumps);
      at += entry.size();
    }
  }
  EXPECT_EQ(texts, 2 * kEntries);
  EXPECT_EQ(dumps, 2 * kEntries);
}

}  // namespace
