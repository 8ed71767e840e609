#include <cstring>
#include <string_view>
#include <tuple>

#include "orvane.h"
#include "util/timestamps.h"

namespace {

using orvane::TimeText;

constexpr int32_t kWithMs = 1;

// Fills the caller's room: the text and zeros behind it, at least one.
template <std::size_t kRoom>
void Store(const TimeText& text, char* out) {
  static_assert(kRoom <= std::tuple_size_v<TimeText>);
  std::memcpy(out, text.data(), kRoom);
  out[kRoom - 1] = '\0';
}

}  // namespace

void GetTimeStampInt(uint32_t* stamp) {
  *stamp = orvane::StampFromCalendar(orvane::platform::UtcNow());
}

void GetTimeStampStr(char* out, int32_t withMs) {
  Store<14>(orvane::StampText(orvane::platform::UtcNow(), withMs == kWithMs), out);
}

void GetTimeStr(char* out) {
  Store<32>(orvane::CalendarText(orvane::platform::UtcNow(), false), out);
}

void GetTimeStrFromTimeStampInt(char* out, uint32_t stamp) {
  Store<32>(orvane::CalendarText(orvane::CalendarFromStamp(stamp), false), out);
}

void GetTimeStrFromTimeStampStr(char* out, const char* stampText, int32_t withMs) {
  const std::string_view text = stampText;
  if (text.size() > 25) return;
  if (text.size() < 3) return Store<36>({}, out);
  Store<36>(orvane::CalendarText(orvane::CalendarFromStampText(text), withMs == kWithMs), out);
}
