#include <gtest/gtest.h>
#include <stdlib.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>

#include "orvane.h"

namespace {

using namespace std::string_literals;

// UTC since 1972 an hour behind, by way of a leap that takes 3600 seconds.
const std::string kLeapingZone =
    "TZif"s + std::string(16, '\0') +
    "\0\0\0\0\0\0\0\0\0\0\0\1\0\0\0\0\0\0\0\1\0\0\0\4"s  // one leap, one type, four letters
    "\0\0\0\0\0\0UTC\0\4\xB2\x58\0\0\0\x0E\x10"s;

TEST(Clock, IsReadWithoutAnyZone) {
  const auto zone = std::filesystem::temp_directory_path() / "orvane_leaping_zone";
  std::ofstream(zone, std::ios::binary) << kLeapingZone;
  setenv("TZ", zone.c_str(), 1);
  uint32_t stamp = 0;
  GetTimeStampInt(&stamp);
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  unsetenv("TZ");
  std::filesystem::remove(zone);
  const auto unixTime = std::chrono::duration_cast<std::chrono::seconds>(now).count();
  // The second may have turned between the two looks, but forward alone.
  EXPECT_LE(stamp + 28800, unixTime);
  EXPECT_GE(stamp + 28800 + 20, unixTime);
}

}  // namespace
