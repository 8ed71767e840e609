#include <gtest/gtest.h>

#include <filesystem>
#include <new>
#include <string>

#include "memory/failing_allocations.h"
#include "orvane.h"

namespace orvane_test {
namespace {

TEST(Memory, MissingLeavesTheConvertedTextUntouched) {
  const std::string text(3000, 'a');
  const std::string untouched(text.size(), '\x55');
  for (const auto convert : {ASCII2UTF_8, UTF_82ASCII}) {
    std::string out = untouched;
    const auto converts = [&] {
      try {
        convert(text.c_str(), out.data());
        return 1;
      } catch (const std::bad_alloc&) {
        return 0;
      }
    };
    EXPECT_GE(FailuresOf(converts, [&] { ASSERT_EQ(out, untouched); }), 2);
    EXPECT_EQ(out, text);
  }
}

TEST(Memory, IsNotAskedForByTimesAndLogs) {
  const std::string path =
      (std::filesystem::temp_directory_path() / "orvane_out_of_memory.txt").string();
  std::filesystem::remove(path);
  const std::string octets(10'000, 'o');
  char text[36];
  RunWith(0, [&] {
    GetTimeStr(text);
    GetTimeStrFromTimeStampStr(text, "1735660799042", 1);
    AsciiLog(path.c_str(), text);
    HexLog(path.c_str(), reinterpret_cast<const unsigned char*>(octets.data()), 10'000);
  });
  EXPECT_STREQ(text, "2024-12-31 23:59:59:042");
  EXPECT_EQ(std::filesystem::file_size(path), 23U + 20'000U);
  std::filesystem::remove(path);
}

}  // namespace
}  // namespace orvane_test
