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

// Lines from several pipes, in the order of their arrival.
class LineQueue {
 public:
  struct Line {
    size_t from;                      // as given to Read
    std::optional<std::string> text;  // none at the pipe's end
  };

  // Reads a descriptor to its end, in a thread of its own, and closes it.
  void Read(int descriptor, size_t from);

  // Waits for the next line; none after this time.
  std::optional<Line> Next(std::chrono::milliseconds patience);

 private:
  // Shared with the threads, which outlive the queue.
  struct Shared {
    std::mutex mutex;
    std::condition_variable news;
    std::queue<Line> lines;
    void Add(Line line);
  };

  std::shared_ptr<Shared> shared_ = std::make_shared<Shared>();
};

// False if the reading end is closed.
bool WriteLine(int descriptor, std::string_view text);

}  // namespace host
