#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace host {

// The messages of the Language Server Protocol on standard input and output: a header with
// Content-Length, an empty line, and that many octets.
class MessageStream {
 public:
  // Switches standard output to octets.
  MessageStream();

  // The next message; none at the end of input. Empty for a header without a usable length: the
  // search for the next header goes on behind it. Throws Failure (kFileFault).
  std::optional<std::string> Next();

  // Throws Failure (kFileFault).
  static void Send(const std::string& message);

 private:
  bool ReadMore();
  std::optional<std::string> NextLine();

  std::string octets_;  // read but not taken yet
};

}  // namespace host
