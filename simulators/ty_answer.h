#pragma once

// How both TY libraries answer: their result is the status word.

#include "common/reader.h"

namespace ty {

constexpr uint16_t kDone = 0x9000;
constexpr uint16_t kNoCard = 0x6FFF;

// The area gets the response data. If the status word is not 9000 and there is no data, it gets the
// status word.
inline simulator::Answer ToCommand(const uint8_t* command, uint32_t length) {
  std::optional<simulator::Octets> response = simulator::AskCard(command, length, SIZE_MAX);
  if (!response) return {kNoCard};
  const uint16_t word = simulator::StatusWord(*response);
  if (word == kDone || response->size() > 2) response->resize(response->size() - 2);
  return {word, std::move(response)};
}

inline simulator::Answer ToReset() {
  std::optional<simulator::Octets> atr = simulator::ResetCard();
  return atr ? simulator::Answer{kDone, std::move(atr)} : simulator::Answer{kNoCard};
}

}  // namespace ty
