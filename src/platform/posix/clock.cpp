#include "platform/clock.h"

#include <time.h>

namespace orvane::platform {

CalendarTime UtcNow() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  tm fields{};
  gmtime_r(&now.tv_sec, &fields);
  const auto field = [](auto value) { return static_cast<std::uint16_t>(value); };
  return {field(fields.tm_year + 1900),  field(fields.tm_mon + 1), field(fields.tm_mday),
          field(fields.tm_hour),         field(fields.tm_min),     field(fields.tm_sec),
          field(now.tv_nsec / 1'000'000)};
}

}  // namespace orvane::platform
