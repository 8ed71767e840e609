#include "host/batch/line_queue.h"

#include <array>
#include <thread>
#include <utility>

#include "host/platform.h"

namespace host {

void LineQueue::Shared::Add(Line line) {
  {
    const std::lock_guard lock(mutex);
    lines.push(std::move(line));
  }
  news.notify_one();
}

void LineQueue::Read(int descriptor, size_t from) {
  std::thread([shared = shared_, descriptor, from] {
    std::array<char, 4096> area;
    std::string text;
    std::ptrdiff_t count = 0;
    while ((count = ReadSome(descriptor, area.data(), area.size())) > 0) {
      text.append(area.data(), static_cast<size_t>(count));
      for (size_t end; (end = text.find('\n')) != text.npos; text.erase(0, end + 1)) {
        shared->Add({from, text.substr(0, end)});
      }
    }
    CloseFile(descriptor);
    shared->Add({from, std::nullopt});
  }).detach();
}

std::optional<LineQueue::Line> LineQueue::Next(std::chrono::milliseconds patience) {
  std::unique_lock lock(shared_->mutex);
  const auto has = [this] { return !shared_->lines.empty(); };
  // Without patience this makes no system call.
  if (!has() && (patience.count() == 0 || !shared_->news.wait_for(lock, patience, has))) {
    return std::nullopt;
  }
  Line line = std::move(shared_->lines.front());
  shared_->lines.pop();
  return line;
}

bool WriteLine(int descriptor, std::string_view text) {
  const std::string line = std::string(text) + '\n';
  for (std::string_view rest = line; !rest.empty();) {
    const std::ptrdiff_t count = WriteSome(descriptor, rest);
    if (count <= 0) return false;
    rest.remove_prefix(static_cast<size_t>(count));
  }
  return true;
}

}  // namespace host
