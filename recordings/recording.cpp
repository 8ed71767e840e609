#include "recordings/recording.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <optional>
#include <system_error>

namespace recordings {
namespace {

// Far longer than any line that is written: a longer one is no recording.
constexpr std::streamsize kLongestLine = 1 << 20;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

struct Line {
  std::string_view text;
  bool whole;  // has its line end
};

class Lines {
 public:
  explicit Lines(std::istream& in) : in_(in), buffer_(kLongestLine, '\0') {}

  size_t Number() const { return number_; }  // of the line that Next gave last

  // Empty at the end of the file. A line is valid until the next call.
  std::optional<Line> Next() {
    ++number_;
    in_.getline(buffer_.data(), kLongestLine);
    const auto count = static_cast<size_t>(in_.gcount());
    if (in_.bad()) throw Fault(0, "it can't be read");
    if (in_.eof() && count == 0) return std::nullopt;
    if (in_.fail() && !in_.eof()) throw Fault(number_, "this is too long for a recording's line");
    const bool whole = !in_.eof();
    std::string_view text(buffer_.data(), whole ? count - 1 : count);
    if (text.ends_with('\r')) text.remove_suffix(1);
    if (number_ == 1 && text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
    return Line{text, whole};
  }

 private:
  std::istream& in_;
  std::string buffer_;
  size_t number_ = 0;
};

}  // namespace

Recording ReadRecording(std::istream& in) {
  Recording recording;
  Lines lines(in);
  while (const std::optional<Line> line = lines.Next()) {
    if (line->text.empty()) continue;
    try {
      const std::optional<Event> event = ReadEvent(line->text);
      if (!event) continue;
      if (recording.events.empty() && event->type != EventType::kRecording) {
        throw BadEvent("a recording begins with the event \"recording\"");
      }
      recording.events.push_back({*event, lines.Number()});
    } catch (const BadEvent& fault) {
      if (!recording.events.empty() && !line->whole) {
        recording.cutLine = lines.Number();
        break;
      }
      throw Fault(lines.Number(), fault.what());
    }
  }
  if (recording.events.empty()) throw Fault(0, "there is no recording in it");
  return recording;
}

Recording ReadRecording(const std::filesystem::path& file) {
  errno = 0;
  std::ifstream in(file, std::ios::binary);
  if (!in) throw Fault(0, "it can't be opened: " + std::generic_category().message(errno));
  return ReadRecording(in);
}

bool Matches(const Event& exchange, std::string_view command) {
  return std::equal(exchange.command.begin(), exchange.command.end(), command.begin(),
                    command.end(),
                    [](char recorded, char sent) { return recorded == '*' || recorded == sent; });
}

}  // namespace recordings
