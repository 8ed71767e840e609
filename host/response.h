#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/command.h"

namespace host {

// A card's response as scripts see it in %RESP and %SW: hexadecimal text.
struct Response {
  std::string data;
  std::string statusWord;  // empty for readers without status words
  // The response did not end in 9000. statusWord is then all that the library gives of it: its
  // first two octets. If the response has data, these are the beginning of the data.
  bool failed = false;
};

// Splits the text of SendCommand into data and status word; its form depends on the reader's kind.
// None if there was no response.
std::optional<Response> ReadResponse(int32_t kind, int32_t result, std::string_view text);

// What is wrong if a command has more octets than a reader of this kind takes; else empty.
std::string TooLong(const CardCommand& command, int32_t kind);

// What a failed response's status word may be instead, or what to ask if the card offers more data
// than a response can hold; empty if it is what it looks like.
std::string NoteOn(const Response& response, const CardCommand& command, int32_t kind);

// The note for a command without a response whose response would not fit; empty if it fits.
std::string TooMuchAsked(const CardCommand& command, int32_t kind);

}  // namespace host
