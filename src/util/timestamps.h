#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "platform/clock.h"

namespace orvane {

using platform::CalendarTime;

// Seconds since 1970-01-01 08:00:00, in 32-bit arithmetic: 28800 less than the Unix time of the
// same UTC time. For calendar times in or after 1970.
uint32_t StampFromCalendar(const CalendarTime& time);

// The way back; the last 28800 stamps are the first eight hours of 1970. The millisecond is 0.
CalendarTime CalendarFromStamp(uint32_t stamp);

// The time that a stamp's decimal number stands for when three digits of milliseconds stand behind
// it. Both numbers are read as far as their digits go; text has at least three characters.
CalendarTime CalendarFromStampText(std::string_view text);

// A text with zeros behind it.
using TimeText = std::array<char, 36>;

// The stamp as a signed number and, if wanted, the milliseconds behind it.
TimeText StampText(const CalendarTime& time, bool withMs);

// YYYY-MM-DD hh:mm:ss and, if wanted, a colon and the milliseconds behind it.
TimeText CalendarText(const CalendarTime& time, bool withMs);

}  // namespace orvane
