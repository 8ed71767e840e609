// Stamps on a clock that the tests set.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <tuple>

#include "orvane.h"
#include "platform/clock.h"

namespace {

orvane::platform::CalendarTime now;

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

TEST(Timestamps, StandForTimes) {
  const std::pair<uint32_t, const char*> rows[] = {{0, "1970-01-01 08:00:00"},
                                                   {4294938496, "1970-01-01 00:00:00"},
                                                   {4294967295, "1970-01-01 07:59:59"},
                                                   {1735660799, "2024-12-31 23:59:59"},
                                                   {2147483648, "2038-01-19 11:14:08"},
                                                   {4294938495, "2106-02-07 06:28:15"},
                                                   {951782400 - 28800, "2000-02-29 00:00:00"},
                                                   {4107542400 - 28801, "2100-02-28 23:59:59"},
                                                   {4107542400 - 28800, "2100-03-01 00:00:00"}};
  for (const auto& [stamp, text] : rows) EXPECT_EQ(TimeOfStamp(stamp), text);
  for (uint32_t stamp = 0, back = 0; stamp < UINT32_MAX - 40000; stamp += 39999) {
    now = {};
    std::sscanf(TimeOfStamp(stamp).c_str(), "%hu-%hu-%hu %hu:%hu:%hu", &now.year, &now.month,
                &now.day, &now.hour, &now.minute, &now.second);
    GetTimeStampInt(&back);
    ASSERT_EQ(back, stamp);
  }
}

TEST(Timestamps, AreReadFromText) {
  const std::tuple<const char*, int, const char*> rows[] = {
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
  for (const auto& [text, withMs, expected] : rows)
    EXPECT_EQ(Stored(36, [&, t = text,
                          ms = withMs](char* out) { GetTimeStrFromTimeStampStr(out, t, ms); }),
              expected)
        << text;

  char area[36] = "1735660799042";
  GetTimeStrFromTimeStampStr(area, area, 1);
  EXPECT_STREQ(area, "2024-12-31 23:59:59:042");
  std::string out(36, kUntouched);
  GetTimeStrFromTimeStampStr(out.data(), "00000000000000000000060123", 1);
  EXPECT_EQ(out, std::string(36, kUntouched));
}

TEST(Timestamps, ComeFromTheClock) {
  const struct {
    orvane::platform::CalendarTime time;
    const char *text, *stamp, *withMs;
  } rows[] = {
      {{2024, 12, 31, 23, 59, 59, 7}, "2024-12-31 23:59:59", "1735660799", "1735660799007"},
      {{1970, 1, 1, 8, 0, 0, 999}, "1970-01-01 08:00:00", "0", "0999"},
      // A number of 14 characters loses its last one.
      {{2038, 1, 19, 11, 14, 8, 12}, "2038-01-19 11:14:08", "-2147483648", "-214748364801"}};
  for (const auto& row : rows) {
    now = row.time;
    EXPECT_EQ(Stored(32, GetTimeStr), row.text);
    for (const int withMs : {0, 1, 3})
      EXPECT_EQ(Stored(14, [&](char* out) { GetTimeStampStr(out, withMs); }),
                withMs == 1 ? row.withMs : row.stamp);
  }
}

}  // namespace

orvane::platform::CalendarTime orvane::platform::UtcNow() { return now; }
