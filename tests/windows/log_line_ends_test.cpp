#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "orvane.h"

namespace {

TEST(LogLineEnds, AreCarriageReturnAndLineFeed) {
  const struct {
    const char* text;
    const char* stored;
  } rows[] = {{"one\ntwo\n", "one\r\ntwo\r\n"},
              {"\n\n", "\r\n\r\n"},
              {"a\r\nb", "a\r\r\nb"},
              {"a\rb\x1A", "a\rb\x1A"},
              {"none", "none"}};
  const std::filesystem::path path = std::filesystem::temp_directory_path() / "orvane_lines.txt";
  std::string expected;
  std::filesystem::remove(path);
  for (const auto& row : rows) {
    AsciiLog(path.string().c_str(), row.text);
    // Behind an end-of-text character, too, the next entry is appended.
    const unsigned char octet = 0x0A;
    HexLog(path.string().c_str(), &octet, 1);
    expected += std::string(row.stored) + "0A";
  }
  std::ifstream file(path, std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), expected);
  file.close();
  std::filesystem::remove(path);
}

}  // namespace
