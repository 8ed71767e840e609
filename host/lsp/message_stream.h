#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace host {

// The messages of the Language Server Protocol on standard input and output: a header with
// Content-Length, an empty line, and so many octets.
class MessageStream {
 public:
  // Makes standard output ready for octets.
  MessageStream();

  // The next message; none at the end of input. An empty one stands for a header without a length
  // that can be followed: the next header is looked for behind it. Throws Failure (kFileFault).
  std::optional<std::string> Next();

  // Throws Failure (kFileFault).
  static void Send(const std::string& message);

 private:
  bool ReadMore();
  std::optional<std::string> NextLine();

  std::string octets_;  // not taken yet
};

}  // namespace host
