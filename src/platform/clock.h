#pragma once

#include <cstdint>

namespace orvane::platform {

// A date of the Gregorian calendar and a time of day. Months and days count from 1.
struct CalendarTime {
  std::uint16_t year = 0;
  std::uint16_t month = 0;
  std::uint16_t day = 0;
  std::uint16_t hour = 0;
  std::uint16_t minute = 0;
  std::uint16_t second = 0;
  std::uint16_t millisecond = 0;

  bool operator==(const CalendarTime&) const = default;
};

// The system's clock now, in UTC.
CalendarTime UtcNow();

}  // namespace orvane::platform
