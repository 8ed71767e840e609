#include "common/reader.h"

#include <algorithm>

namespace simulator {

std::optional<Octets> AskCard(const uint8_t* command, int64_t length, size_t room) {
  if (!CardPresent() || !command) return std::nullopt;
  Octets response = Card().Transmit({command, static_cast<size_t>(std::max<int64_t>(length, 0))});
  if (response.size() < 2 || response.size() > room) return std::nullopt;
  return response;
}

std::optional<Octets> ResetCard() {
  if (!CardPresent()) return std::nullopt;
  Card().Reset();
  return Card().Atr();
}

uint16_t StatusWord(const Octets& response) {
  return static_cast<uint16_t>(response[response.size() - 2] << 8 | response.back());
}

int32_t NotSimulated(const char* function) {
  Call call(function, {});
  return call.Return<int32_t>(call.Ask([] { return Answer{-1}; }));
}

int32_t Handles::Open(int32_t reader) {
  readers_[next_] = reader;
  return next_++;
}

std::optional<int32_t> Handles::Reader(int64_t handle) const {
  const auto found = readers_.find(handle);
  return found == readers_.end() ? std::nullopt : std::optional(found->second);
}

void Handles::Forget() {
  readers_.clear();
  next_ = first_;
}

}  // namespace simulator
