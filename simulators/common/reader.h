#pragma once

// What the simulated readers share: the card in front of them and their open connections.

#include <map>
#include <optional>

#include "common/call.h"
#include "common/module.h"

namespace simulator {

// The size in octets of the callers' areas for replies and answers to reset.
constexpr size_t kAreaSize = 256;

// The card's response with its status word at the end. Empty if there is no card or no command, if
// the card is mute, or if the response has more octets than room.
std::optional<Octets> AskCard(const uint8_t* command, int64_t length, size_t room = kAreaSize);

// Resets the card and gives its ATR; empty if there is no card.
std::optional<Octets> ResetCard();

// The last two octets of a response.
uint16_t StatusWord(const Octets& response);

// Copies the answer's data to the area and reports its length.
template <std::integral Length>
void HandOver(Call& call, const Answer& answer, void* area, Length* length,
              size_t size = kAreaSize) {
  const int64_t reported = call.Write(answer, area, size);
  if (length) *length = static_cast<Length>(reported);
}

// The body of a function that exists in the library but that nobody calls.
int32_t NotSimulated(const char* function);

// The open connections by their handles, which count up from the first one.
class Handles {
 public:
  explicit Handles(int32_t first) : first_(first), next_(first) {}

  // Opens a connection to the reader of this number and gives its handle.
  int32_t Open(int32_t reader);
  // False if there is no such connection.
  bool Close(int64_t handle) { return readers_.erase(handle) != 0; }
  // The reader's number; empty if there is no such connection.
  std::optional<int32_t> Reader(int64_t handle) const;
  bool Knows(int64_t handle) const { return readers_.contains(handle); }
  // Closes all; the next handle is the first one again.
  void Forget();

 private:
  int32_t first_;
  int32_t next_;
  std::map<int64_t, int32_t> readers_;
};

}  // namespace simulator
