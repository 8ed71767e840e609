#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <tuple>

#include "orvane.h"
#include "platform/clock.h"

namespace {

using orvane::platform::CalendarTime;
using orvane::platform::UtcNow;

// A text, filled up with zeros.
using TimeText = std::array<char, 36>;

constexpr int32_t kWithMs = 1;

constexpr uint32_t kSecondsPerDay = 86400;
constexpr uint32_t kZeroOfStamps = 28800;
constexpr std::size_t kMillisecondDigits = 3;

// Reads blanks, a sign, and digits up to the first other character, modulo 2^32: a stamp reads the
// same whether it was printed with or without a sign.
uint32_t DecimalNumber(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  uint32_t number = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') break;
    number = number * 10 + static_cast<uint32_t>(c - '0');
  }
  return negative ? 0 - number : number;
}

// Seconds since 1970-01-01 08:00:00, in 32-bit arithmetic: 28800 less than the Unix time of the
// same UTC time. For calendar times from 1970 on.
uint32_t StampFromCalendar(const CalendarTime& time) {
  using namespace std::chrono;
  const sys_days date = year(time.year) / month(time.month) / day(time.day);
  const auto days = static_cast<uint32_t>(date.time_since_epoch().count());
  return ((days * 24 + time.hour) * 60 + time.minute) * 60 + time.second - kZeroOfStamps;
}

// The reverse; the last 28800 stamps are the first eight hours of 1970. The millisecond is 0.
CalendarTime CalendarFromStamp(uint32_t stamp) {
  using namespace std::chrono;
  const uint32_t seconds = stamp + kZeroOfStamps;
  const year_month_day date = sys_days(days(seconds / kSecondsPerDay));
  const auto field = [](auto value) { return static_cast<uint16_t>(value); };
  return {.year = field(static_cast<int>(date.year())),
          .month = field(static_cast<unsigned>(date.month())),
          .day = field(static_cast<unsigned>(date.day())),
          .hour = field(seconds % kSecondsPerDay / 3600),
          .minute = field(seconds / 60 % 60),
          .second = field(seconds % 60)};
}

// The time of a decimal stamp with three digits of milliseconds behind it. Each number is read as
// far as its digits go. The text has at least three characters.
CalendarTime CalendarFromStampText(std::string_view text) {
  const std::size_t stampDigits = text.size() - kMillisecondDigits;
  CalendarTime time = CalendarFromStamp(DecimalNumber(text.substr(0, stampDigits)));
  time.millisecond = static_cast<uint16_t>(DecimalNumber(text.substr(stampDigits)));
  return time;
}

// The stamp as a signed number, followed by the milliseconds if wanted.
TimeText StampText(const CalendarTime& time, bool withMs) {
  const auto stamp = static_cast<int32_t>(StampFromCalendar(time));
  TimeText text{};
  if (withMs) {
    std::snprintf(text.data(), text.size(), "%d%03d", stamp, time.millisecond);
  } else {
    std::snprintf(text.data(), text.size(), "%d", stamp);
  }
  return text;
}

// YYYY-MM-DD hh:mm:ss, followed by a colon and the milliseconds if wanted.
TimeText CalendarText(const CalendarTime& time, bool withMs) {
  TimeText text{};
  const int length =
      std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d:%02d:%02d", time.year,
                    time.month, time.day, time.hour, time.minute, time.second);
  if (withMs) {
    const auto used = static_cast<std::size_t>(length);
    std::snprintf(text.data() + used, text.size() - used, ":%03d", time.millisecond);
  }
  return text;
}

// Fills the caller's whole room: the text, then at least one zero.
template <std::size_t kRoom>
void Store(const TimeText& text, char* out) {
  static_assert(kRoom <= std::tuple_size_v<TimeText>);
  std::memcpy(out, text.data(), kRoom);
  out[kRoom - 1] = '\0';
}

}  // namespace

void GetTimeStampInt(uint32_t* stamp) { *stamp = StampFromCalendar(UtcNow()); }

void GetTimeStampStr(char* out, int32_t withMs) {
  Store<14>(StampText(UtcNow(), withMs == kWithMs), out);
}

void GetTimeStr(char* out) { Store<32>(CalendarText(UtcNow(), false), out); }

void GetTimeStrFromTimeStampInt(char* out, uint32_t stamp) {
  Store<32>(CalendarText(CalendarFromStamp(stamp), false), out);
}

void GetTimeStrFromTimeStampStr(char* out, const char* stampText, int32_t withMs) {
  const std::string_view text = stampText;
  if (text.size() > 25) return;
  if (text.size() < 3) return Store<36>({}, out);
  Store<36>(CalendarText(CalendarFromStampText(text), withMs == kWithMs), out);
}
