#pragma once

#include <memory>

namespace host {

class DescriptorBuffer;

// While it lives, std::cout and std::cerr write UTF-8 to standard output and standard error, whole
// lines at a time. Standard output that can't be written ends what the program does: the stream
// throws Failure (kFileFault) then, at the latest when it is flushed, and is bad from there on.
// Standard error alone turns bad.
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
