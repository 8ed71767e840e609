#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace host {

// A card's answer, as scripts see it in %RESP and %SW: hexadecimal text.
struct Answer {
  std::string data;
  std::string statusWord;  // empty for a kind of reader that has none
};

// Sorts what SendCommand gave into data and status word; what it gives differs by reader kind.
// None if there was no answer.
std::optional<Answer> ReadAnswer(int32_t kind, int32_t result, std::string_view text);

// True for the kinds whose answers end in a status word.
bool HasStatusWord(int32_t kind);

}  // namespace host
