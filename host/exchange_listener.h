#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/command.h"
#include "host/reader_address.h"
#include "host/response.h"

namespace host {

// When something began and how long it took.
struct Timing {
  std::chrono::system_clock::time_point begin;
  std::chrono::steady_clock::time_point start;  // the same moment by the clock that never jumps
  std::chrono::nanoseconds duration;
};

struct CardExchange {
  size_t reader;  // 0 to 15
  int32_t kind;   // of that reader
  const CardCommand& command;
  bool hidden;                              // the command's data must not be shown
  const std::optional<Response>& response;  // none if there was no response
  Timing timing;
};

// A session reports to it what it does with readers and cards, as soon as it is done. It reports
// everything, and marks what must not be shown. An exception from a listener ends what the session
// does.
class ExchangeListener {
 public:
  virtual ~ExchangeListener() = default;

  virtual void Opening() {}
  virtual void Opened(size_t reader, const ReaderAddress& address, bool simulated, bool hidden) = 0;
  // In digits. No ATR if the card gave none; empty digits if its reader has none.
  virtual void CardReset(size_t reader, const std::optional<std::string>& atr,
                         const Timing& timing) = 0;
  // Comes before a command is sent.
  virtual void Sending(const CardCommand& /*command*/, bool /*hidden*/) {}
  virtual void Exchanged(const CardExchange& exchange) = 0;
};

}  // namespace host
