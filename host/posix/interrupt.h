#pragma once

#include <cstdio>

namespace host {

// While it lives, Ctrl-C lets a read fail with EINTR. Once one has lived, the first Ctrl-C outside
// changes nothing, and the second one ends the program.
class InterruptibleRead {
 public:
  InterruptibleRead();
  InterruptibleRead(const InterruptibleRead&) = delete;
  InterruptibleRead& operator=(const InterruptibleRead&) = delete;
  ~InterruptibleRead();

  bool Interrupted() const;
};

// Where a person sees what is typed, even if standard output goes elsewhere.
std::FILE* TerminalStream();

}  // namespace host
