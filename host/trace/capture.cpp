#include "host/trace/capture.h"

#include <charconv>
#include <chrono>
#include <cstdint>
#include <string_view>

namespace host {
namespace {

// In these packets the data names its own dissector: DLT_WIRESHARK_UPPER_PDU, and its tags.
constexpr uint32_t kLinkType = 252;
constexpr uint32_t kLongestPacket = 262144;
enum Tag : uint16_t { kEnd = 0, kDissector = 12, kDirection = 35 };
enum class Direction : uint32_t { kToCard = 0, kFromCard = 1 };

void Append(std::string& text, uint32_t number, int octets, bool bigEndian) {
  for (int at = 0; at < octets; ++at) {
    text += static_cast<char>(number >> 8 * (bigEndian ? octets - 1 - at : at));
  }
}

void AppendTag(std::string& packet, Tag tag, const std::string& value) {
  Append(packet, tag, 2, true);
  Append(packet, static_cast<uint32_t>(value.size()), 2, true);
  packet += value;
}

std::string OctetsFrom(std::string_view digits) {
  std::string octets;
  for (size_t at = 0; at + 1 < digits.size(); at += 2) {
    unsigned octet = 0;
    std::from_chars(&digits[at], &digits[at] + 2, octet, 16);
    octets += static_cast<char>(octet);
  }
  return octets;
}

// The microseconds since 1970 of a time such as 2026-11-23T13:22:20.123456Z; 0 for another text.
int64_t ReadTime(std::string_view text) {
  constexpr std::string_view kForm = "0000-00-00T00:00:00.000000Z";
  const auto number = [&](size_t at, size_t digits) {
    int value = 0;
    std::from_chars(text.data() + at, text.data() + at + digits, value);
    return value;
  };
  if (text.size() != kForm.size()) return 0;
  using namespace std::chrono;
  const year_month_day date{year{number(0, 4)}, month{static_cast<unsigned>(number(5, 2))},
                            day{static_cast<unsigned>(number(8, 2))}};
  if (!date.ok() || number(0, 4) < 1970) return 0;
  const auto time = sys_days{date} + hours{number(11, 2)} + minutes{number(14, 2)} +
                    seconds{number(17, 2)} + microseconds{number(20, 6)};
  return duration_cast<microseconds>(time.time_since_epoch()).count();
}

class Capture {
 public:
  Capture() {
    Append(text_, 0xA1B2C3D4, 4, false);
    Append(text_, 2, 2, false);  // version 2.4
    Append(text_, 4, 2, false);
    Append(text_, 0, 4, false);  // UTC
    Append(text_, 0, 4, false);
    Append(text_, kLongestPacket, 4, false);
    Append(text_, kLinkType, 4, false);
  }

  void Begin(int64_t time) { begun_ = time; }

  void Add(int64_t at, const char* dissector, Direction direction, std::string_view digits) {
    if (digits.empty()) return;
    std::string packet;
    std::string name = dissector;
    name.resize((name.size() + 3) / 4 * 4, '\0');
    AppendTag(packet, kDissector, name);
    std::string way;
    Append(way, static_cast<uint32_t>(direction), 4, true);
    AppendTag(packet, kDirection, way);
    AppendTag(packet, kEnd, "");
    packet += OctetsFrom(digits);
    const int64_t time = begun_ + at;
    Append(text_, static_cast<uint32_t>(time / 1'000'000), 4, false);
    Append(text_, static_cast<uint32_t>(time % 1'000'000), 4, false);
    for (int length = 0; length < 2; ++length) {  // the stored length, and the one on the wire
      Append(text_, static_cast<uint32_t>(packet.size()), 4, false);
    }
    text_ += packet;
  }

  const std::string& Text() const { return text_; }

 private:
  std::string text_;
  int64_t begun_ = 0;
};

}  // namespace

std::string MakeCapture(const Recording& recording) {
  Capture capture;
  std::string atr;
  for (const RecordedEvent& event : recording.events) {
    const int64_t end = event.at + event.took;
    if (event.type == EventType::kRecording) capture.Begin(ReadTime(event.begun));
    if (event.type != EventType::kAtr || event.atr != atr) {
      capture.Add(end, "iso7816.atr", Direction::kFromCard, event.atr);
    }
    if (!event.atr.empty()) atr = event.atr;
    if (event.type != EventType::kExchange) continue;
    capture.Add(event.at, "iso7816", Direction::kToCard, CommandOf(event).digits);
    capture.Add(end, "iso7816", Direction::kFromCard, event.response + event.statusWord);
  }
  return capture.Text();
}

}  // namespace host
