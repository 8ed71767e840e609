#include "host/lsp/message_stream.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <iostream>
#include <system_error>

#include "host/failure.h"
#include "host/platform.h"
#include "host/text.h"

namespace host {
namespace {

constexpr size_t kLongestMessage = 64 << 20;
constexpr size_t kLongestLine = 4096;  // of a header

// The length in a header's line; none if the line has none. After a message that was longer than
// its header said, the field's name may be anywhere in the line.
std::optional<size_t> LengthIn(std::string_view line) {
  constexpr std::string_view kName = "CONTENT-LENGTH:";
  const size_t name = UpperCase(line).rfind(kName);
  if (name == line.npos) return std::nullopt;
  line.remove_prefix(name + kName.size());
  line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
  line = line.substr(0, line.find_last_not_of(" \t") + 1);
  size_t length = 0;
  const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), length);
  const bool whole = error == std::errc() && end == line.data() + line.size();
  return whole && length <= kLongestMessage ? std::optional(length) : std::nullopt;
}

}  // namespace

MessageStream::MessageStream() { WriteOctets(); }

bool MessageStream::ReadMore() {
  std::array<char, 65536> area;
  const std::ptrdiff_t count = ReadSome(0, area.data(), area.size());
  if (count < 0) {
    throw Failure(kFileFault,
                  "can't read standard input: " + std::generic_category().message(errno));
  }
  octets_.append(area.data(), static_cast<size_t>(count));
  return count > 0;
}

// The line without its end. A line too long for a header comes in parts.
std::optional<std::string> MessageStream::NextLine() {
  size_t end = octets_.find('\n');
  while (end == octets_.npos && octets_.size() < kLongestLine) {
    if (!ReadMore()) return std::nullopt;
    end = octets_.find('\n');
  }
  const bool ends = end < kLongestLine;
  std::string line = octets_.substr(0, ends ? end : kLongestLine);
  octets_.erase(0, line.size() + (ends ? 1 : 0));
  if (ends && line.ends_with('\r')) line.pop_back();
  return line;
}

std::optional<std::string> MessageStream::Next() {
  std::optional<size_t> length;
  std::optional<std::string> line = NextLine();
  for (; line && !line->empty(); line = NextLine()) {
    if (const std::optional<size_t> told = LengthIn(*line)) length = told;
  }
  if (!line) return std::nullopt;
  if (!length) return "";
  while (octets_.size() < *length) {
    if (!ReadMore()) return std::nullopt;
  }
  std::string message = octets_.substr(0, *length);
  octets_.erase(0, *length);
  return message;
}

void MessageStream::Send(const std::string& message) {
  std::cout << "Content-Length: " << message.size() << "\r\n\r\n" << message << std::flush;
}

}  // namespace host
