#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "orvane.h"
#include "support/library_copy.h"

namespace {

constexpr char kPath[] = "log.txt";

struct LogFiles : testing::Test {
  orvane_test::WorkingFolder folder;
};

// With line ends that are line feeds.
std::string Content() {
  std::ifstream file(kPath);
  EXPECT_TRUE(file);
  return {std::istreambuf_iterator<char>(file), {}};
}

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
  AsciiLog(kPath, "");
  EXPECT_EQ(Content(), "");
  orvane_test::WriteFile(kPath, "before\n");
  AsciiLog(kPath, "one\n");
  AsciiLog(kPath, "");
  const unsigned char octets[] = {0x0A, 0xFF};
  HexLog(kPath, octets, 2);
  HexLog(kPath, octets, 1);
  EXPECT_EQ(Content(), "before\none\n0AFF0A");
}

TEST_F(LogFiles, TakeAnyNumberOfOctets) {
  for (const int count : {-2147483647 - 1, -1, 0, 1, 2047, 2048, 2049, 4096, 100'001}) {
    std::filesystem::remove(kPath);
    const auto octets = Octets(count > 0 ? static_cast<std::size_t>(count) : 0);
    HexLog(kPath, octets.data(), count);
    EXPECT_EQ(Content(), Hex(octets)) << count;
  }
}

TEST_F(LogFiles, ThatCannotBeOpenedLeaveTheLockFree) {
  const unsigned char octet = 0x42;
  for (const char* path : {"missing/log.txt", ".", ""}) {
    AsciiLog(path, "lost");
    HexLog(path, &octet, 1);
  }
  EXPECT_EQ(orvane_test::FilesIn("."), 0);
  // Another thread would wait for ever if the lock were still held.
  std::thread([&] { AsciiLog(kPath, "kept"); }).join();
  EXPECT_EQ(Content(), "kept");
}

TEST_F(LogFiles, HoldWholeEntriesOfThreadsAndProcesses) {
  constexpr std::size_t kEntries = 300;
  const auto octets = Octets(5000);
  const std::string hex = Hex(octets), text = "<" + std::string(9000, 't') + "\n>";
  void* const copy = orvane_test::LoadLibraryCopy();
  const auto log = EXPORT_OF(copy, AsciiLog);
  const auto write = [&](decltype(AsciiLog)* entry) {
    for (std::size_t i = 0; i < kEntries; ++i) entry(kPath, text.c_str());
  };
  std::thread other(write, AsciiLog), elsewhere(write, log);
  for (std::size_t i = 0; i < kEntries; ++i) HexLog(kPath, octets.data(), 5000);
  other.join();
  elsewhere.join();

  const std::string content = Content();
  ASSERT_EQ(content.size(), kEntries * (hex.size() + 2 * text.size()));
  for (std::size_t at = 0; at < content.size();) {
    const std::string& entry = content[at] == '<' ? text : hex;
    ASSERT_EQ(content.compare(at, entry.size(), entry), 0) << at;
    at += entry.size();
  }
}

}  // namespace
