#include "common/replayed_card.h"

#include <charconv>
#include <cstdio>
#include <utility>

#include "recordings/command_apdu.h"

namespace simulator {
namespace {

using recordings::EventType;
using recordings::RecordedEvent;

const Octets kDiffers = {0x6F, 0x00};

uint32_t CodeOf(std::string_view failed, uint32_t otherwise) {
  constexpr std::string_view kPrefix = "0x";
  if (!failed.starts_with(kPrefix)) return otherwise;
  failed.remove_prefix(kPrefix.size());
  uint32_t code = otherwise;
  std::from_chars(failed.data(), failed.data() + failed.size(), code, 16);
  return code;
}

std::string Shown(const std::string& digits) {
  const bool secret = recordings::CarriesSecret(digits);
  return secret ? recordings::WithoutData(digits, recordings::FindParts(digits)) : digits;
}

}  // namespace

ReplayedCard::ReplayedCard(std::shared_ptr<const Replay> replay)
    : replay_(std::move(replay)), played_(replay_->recording.events.size()) {}

Octets ReplayedCard::Atr() const {
  const std::string* atr = nullptr;
  const std::vector<RecordedEvent>& events = replay_->recording.events;
  for (size_t at = 0; at < events.size(); ++at) {
    if (at >= next_ && atr != nullptr && events[at].type == EventType::kExchange && !played_[at])
      break;
    if (!events[at].atr.empty()) atr = &events[at].atr;
  }
  return atr != nullptr ? FromHex(*atr) : Octets();
}

// The event that answers the command; the number of events if there is none. Changes nothing.
size_t ReplayedCard::Find(const std::string& digits) const {
  const std::vector<RecordedEvent>& events = replay_->recording.events;
  for (size_t at = next_; at < events.size(); ++at) {
    if (events[at].type != EventType::kExchange || played_[at]) continue;
    if (recordings::Matches(events[at], digits)) return at;
    if (!replay_->anyOrder) break;
  }
  return events.size();
}

Octets ReplayedCard::Transmit(std::span<const uint8_t> command) {
  const std::vector<RecordedEvent>& events = replay_->recording.events;
  const std::string digits = ToHex(command);
  ++commands_;
  const size_t found = Find(digits);
  if (found == events.size()) {
    NoteDifference(digits);
    return kDiffers;
  }
  played_[found] = true;
  while (next_ < events.size() && (played_[next_] || events[next_].type != EventType::kExchange)) {
    ++next_;
  }
  const RecordedEvent& event = events[found];
  failureCode_ = CodeOf(event.failed, SmartCard::FailureCode());
  if (event.incomplete) return FromHex(event.statusWord);
  return FromHex(event.response + event.statusWord);
}

void ReplayedCard::NoteDifference(const std::string& digits) {
  if (differedAt_ != 0) return;
  const std::vector<RecordedEvent>& events = replay_->recording.events;
  size_t at = next_;
  while (at < events.size() && events[at].type != EventType::kExchange) ++at;
  differedAt_ = at < events.size() ? events[at].line : events.back().line + 1;
  if (replay_->name.empty()) return;
  std::fprintf(
      stderr,
      "orvane simulator: command %zu is not as recorded\n  sent      %s\n  recorded  %s  %s:%zu\n",
      commands_, Shown(digits).c_str(),
      at < events.size() ? events[at].command.c_str() : "nothing more", replay_->name.c_str(),
      differedAt_);
}

}  // namespace simulator
