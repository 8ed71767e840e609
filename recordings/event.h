#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace recordings {

inline constexpr int64_t kVersion = 1;

enum class EventType { kRecording, kOpen, kAtr, kReset, kExchange, kControl, kClose };

// One line of a recording; docs/limits.md lists the lines. Texts are UTF-8, octets are upper-case
// hexadecimal digits. A member that the line lacks is empty.
struct Event {
  EventType type = EventType::kRecording;

  std::string begun = {};    // recording: UTC, as 2026-11-23T13:22:20.123456Z
  std::string secrets = {};  // recording: "hidden" or "shown"

  int64_t reader = 0;         // the number of an opened reader, from 1 on
  std::string kind = {};      // open
  std::string name = {};      // open
  std::string level = {};     // open: "wire" below the library, "program" at its calls
  std::string protocol = {};  // open, reset: "T=0", "T=1"
  std::string power = {};     // reset, close: "kept", "warm reset", "cold reset", "ejected"
  std::string atr = {};       // open, atr, reset

  std::string code = {};        // exchange, control: the control code
  std::string command = {};     // exchange, control: a * stands for a hidden digit
  std::string response = {};    // exchange, control: without the status word, if there is one
  std::string statusWord = {};  // exchange
  bool incomplete = false;      // exchange: only the response's first two octets are known
  std::string hidden = {};      // what is hidden, and why

  std::string failed = {};  // the code of a failed call, or whatever else is known of the failure

  // In microseconds: the time since the recording began, and the duration.
  int64_t at = 0;
  int64_t took = 0;
};

// Thrown for a line that is no line of a recording.
class BadEvent : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The event's line, without its line end.
std::string WriteEvent(const Event& event);

// Empty for an unknown type of event. Throws BadEvent.
std::optional<Event> ReadEvent(std::string_view text);

}  // namespace recordings
