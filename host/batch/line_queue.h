#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <queue>
#include <string>
#include <string_view>

namespace host {

// Lines that come through pipes, in the order in which they come.
class LineQueue {
 public:
  struct Line {
    size_t from;                      // as Read was told
    std::optional<std::string> text;  // none at the pipe's end
  };

  // Reads a descriptor up to its end, in a thread of its own, and closes it.
  void Read(int descriptor, size_t from);

  // Waits for the next line; none if it takes longer.
  std::optional<Line> Next(std::chrono::milliseconds patience);

 private:
  // The threads outlive the queue.
  struct Shared {
    std::mutex mutex;
    std::condition_variable news;
    std::queue<Line> lines;
    void Add(Line line);
  };

  std::shared_ptr<Shared> shared_ = std::make_shared<Shared>();
};

// False if nobody reads it.
bool WriteLine(int descriptor, std::string_view text);

}  // namespace host
