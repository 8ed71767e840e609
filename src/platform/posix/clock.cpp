#include "platform/clock.h"

#include <chrono>

namespace orvane::platform {

CalendarTime UtcNow() {
  // Not gmtime: it subtracts leap seconds if the environment's TZ counts them.
  using namespace std::chrono;
  const auto now = floor<milliseconds>(system_clock::now());
  const auto today = floor<days>(now);
  const year_month_day date(today);
  const hh_mm_ss time(now - today);
  const auto field = [](auto value) { return static_cast<std::uint16_t>(value); };
  return {.year = field(static_cast<int>(date.year())),
          .month = field(static_cast<unsigned>(date.month())),
          .day = field(static_cast<unsigned>(date.day())),
          .hour = field(time.hours().count()),
          .minute = field(time.minutes().count()),
          .second = field(time.seconds().count()),
          .millisecond = field(time.subseconds().count())};
}

}  // namespace orvane::platform
