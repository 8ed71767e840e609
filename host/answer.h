#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/command.h"

namespace host {

// A card's answer, as scripts see it in %RESP and %SW: hexadecimal text.
struct Answer {
  std::string data;
  std::string statusWord;  // empty for a kind of reader that has none
  // The exchange did not end in 9000, and statusWord is what the library then gives of the answer:
  // its first two octets. Where data stands before the status word, it is the data's beginning.
  bool failed = false;
};

// Sorts what SendCommand gave into data and status word; what it gives differs by reader kind.
// None if there was no answer.
std::optional<Answer> ReadAnswer(int32_t kind, int32_t result, std::string_view text);

// True for the kinds whose answers end in a status word.
bool HasStatusWord(int32_t kind);

// The most octets of a command that the library hands to a reader of this kind.
size_t LongestCommand(int32_t kind);

// The most octets of data that an answer can bring in beside its status word.
size_t MostData(int32_t kind);

// What the status word of a failed answer may be instead, and what to ask where more data is
// offered than an answer can bring in; empty where it is what it looks like.
std::string NoteOn(const Answer& answer, const Command& command, int32_t kind);

// What to say of a command that got no answer because its answer does not fit; empty if it fits.
std::string TooMuchAsked(const Command& command, int32_t kind);

}  // namespace host
