#pragma once

#include <memory>

namespace host {

class DescriptorBuffer;

// While it lives, std::cout and std::cerr write UTF-8 to standard output and standard error, in
// whole lines. If standard output cannot be written, the program ends: the stream throws Failure
// (kFileFault), at the latest when it is flushed, and stays bad. If standard error cannot be
// written, its stream only turns bad.
class StandardStreams {
 public:
  StandardStreams();
  StandardStreams(const StandardStreams&) = delete;
  StandardStreams& operator=(const StandardStreams&) = delete;
  ~StandardStreams();

 private:
  std::unique_ptr<DescriptorBuffer> output_;
  std::unique_ptr<DescriptorBuffer> error_;
};

}  // namespace host
