#include "util/timestamps.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "orvane.h"

namespace {

using orvane::CalendarFromStamp;
using orvane::CalendarTime;
using orvane::StampFromCalendar;

constexpr char kUntouched = '\x55';

// What a function stores in an area of the size that it is to fill: a text and zeros.
template <typename Call>
std::string Stored(std::size_t size, Call call) {
  const auto area = std::make_unique<char[]>(size);
  std::memset(area.get(), kUntouched, size);
  call(area.get());
  const std::string text(area.get(), strnlen(area.get(), size));
  const std::string whole(area.get(), size);
  EXPECT_EQ(whole.substr(text.size()), std::string(size - text.size(), '\0'));
  EXPECT_LT(text.size(), size);
  return text;
}

std::string TimeOfStamp(uint32_t stamp) {
  return Stored(32, [&](char* out) { GetTimeStrFromTimeStampInt(out, stamp); });
}

std::string TimeOfText(const char* text, int withMs) {
  return Stored(36, [&](char* out) { GetTimeStrFromTimeStampStr(out, text, withMs); });
}

TEST(Timestamps, StandForTimes) {
  const struct {
    uint32_t stamp;
    const char* text;
  } rows[] = {{0, "1970-01-01 08:00:00"},
              {4294938496, "1970-01-01 00:00:00"},
              {4294967295, "1970-01-01 07:59:59"},
              {1735660799, "2024-12-31 23:59:59"},
              {2147483648, "2038-01-19 11:14:08"},
              {4294938495, "2106-02-07 06:28:15"},
              {951782400 - 28800, "2000-02-29 00:00:00"},
              {4107542400 - 28801, "2100-02-28 23:59:59"},
              {4107542400 - 28800, "2100-03-01 00:00:00"}};
  for (const auto& row : rows) EXPECT_EQ(TimeOfStamp(row.stamp), row.text);
  for (uint32_t stamp = 0; stamp < UINT32_MAX - 40000; stamp += 39999)
    ASSERT_EQ(StampFromCalendar(CalendarFromStamp(stamp)), stamp);
}

TEST(Timestamps, AreReadFromText) {
  const struct {
    const char* text;
    int withMs;
    const char* expected;
  } rows[] = {
      {"1735660799042", 1, "2024-12-31 23:59:59:042"},
      {"1735660799042", 0, "2024-12-31 23:59:59"},
      {"1735660799042", -1, "2024-12-31 23:59:59"},
      {"1735660799", 0, "1970-01-21 10:07:40"},  // the last three are taken off all the same
      {"-2147483648000", 1, "2038-01-19 11:14:08:000"},
      {"2147483648000", 1, "2038-01-19 11:14:08:000"},
      {" \t+60000", 0, "1970-01-01 08:01:00"},
      {"60x9000", 0, "1970-01-01 08:01:00"},
      {"60 7x", 1, "1970-01-01 08:01:00:007"},
      {"999", 1, "1970-01-01 08:00:00:999"},
      {"-12", 1, "1970-01-01 08:00:00:65524"},
      {"12", 1, ""},
      {"", 0, ""},
      {"0000000000000000000060123", 1, "1970-01-01 08:01:00:123"},
      {"9999999999999999999999000", 1, "2064-10-07 01:12:31:000"}};
  for (const auto& row : rows)
    EXPECT_EQ(TimeOfText(row.text, row.withMs), row.expected) << row.text;

  char area[36] = "1735660799042";
  GetTimeStrFromTimeStampStr(area, area, 1);
  EXPECT_STREQ(area, "2024-12-31 23:59:59:042");
  std::string out(36, kUntouched);
  GetTimeStrFromTimeStampStr(out.data(), "00000000000000000000060123", 1);
  EXPECT_EQ(out, std::string(36, kUntouched));
}

TEST(Timestamps, AreWrittenAsSignedNumbers) {
  const struct {
    CalendarTime time;
    const char* text;
    const char* withMs;
  } rows[] = {{{2024, 12, 31, 23, 59, 59, 7}, "1735660799", "1735660799007"},
              {{1970, 1, 1, 8, 0, 0, 999}, "0", "0999"},
              {{2038, 1, 19, 11, 14, 8, 12}, "-2147483648", "-2147483648012"}};
  for (const auto& row : rows) {
    EXPECT_STREQ(orvane::StampText(row.time, false).data(), row.text);
    EXPECT_STREQ(orvane::StampText(row.time, true).data(), row.withMs);
  }
}

TEST(Timestamps, OfTheClockAgree) {
  using namespace std::chrono;
  const auto unixTime = [] {
    return static_cast<uint32_t>(
        duration_cast<seconds>(system_clock::now().time_since_epoch()).count());
  };
  const uint32_t before = unixTime() - 28800;
  uint32_t stamp = 0;
  GetTimeStampInt(&stamp);
  const std::string time = Stored(32, [](char* out) { GetTimeStr(out); });
  std::vector<uint32_t> stamps = {stamp};
  for (const int withMs : {0, 1, 3}) {
    std::string text = Stored(14, [&](char* out) { GetTimeStampStr(out, withMs); });
    if (withMs == 1) text.resize(text.size() - 3);
    stamps.push_back(static_cast<uint32_t>(std::stoll(text)));
  }
  const uint32_t after = unixTime() - 28800;
  EXPECT_TRUE(std::is_sorted(stamps.begin(), stamps.end()));
  EXPECT_LE(before, stamps.front());
  EXPECT_LE(stamps.back(), after);
  EXPECT_LE(TimeOfStamp(before), time);
  EXPECT_LE(time, TimeOfStamp(after));
}

}  // namespace
