#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/command.h"

namespace host {

// A card's response, as scripts see it in %RESP and %SW: hexadecimal text.
struct Response {
  std::string data;
  std::string statusWord;  // empty for a kind of reader that has none
  // The exchange did not end in 9000, and statusWord is what the library then gives of the
  // response: its first two octets. Where data stands before the status word, it is the data's
  // beginning.
  bool failed = false;
};

// Sorts what SendCommand gave into data and status word; what it gives differs by reader kind.
// None if there was none.
std::optional<Response> ReadResponse(int32_t kind, int32_t result, std::string_view text);

// What is wrong with a command of more octets than go out to a reader of this kind; empty if it has
// none too many.
std::string TooLong(const CardCommand& command, int32_t kind);

// What the status word of a failed response may be instead, and what to ask where more data is
// offered than a response can bring in; empty where it is what it looks like.
std::string NoteOn(const Response& response, const CardCommand& command, int32_t kind);

// What to say of a command that got no response because its response does not fit; empty if it
// fits.
std::string TooMuchAsked(const CardCommand& command, int32_t kind);

}  // namespace host
