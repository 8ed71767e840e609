#include "host/desk/history.h"

#include <algorithm>

#include "host/failure.h"
#include "host/platform.h"
#include "host/text_input.h"

namespace host {
namespace {

constexpr std::ptrdiff_t kMostLines = 1000;

std::vector<std::string> StoredLines() try {
  std::vector<std::string> lines;
  const std::optional<std::string> file = HistoryFile();
  if (!file) return lines;
  TextInput input(*file);
  while (const std::optional<std::string> line = input.NextLine()) lines.push_back(*line);
  return lines;
} catch (const Failure&) {  // no file yet
  return {};
}

}  // namespace

History::History() : earlier_(StoredLines()) {
  for (const std::string& line : earlier_) RememberLine(line);
}

void History::Add(const std::string& line) {
  if (!typed_.empty() && typed_.back() == line) return;
  typed_.push_back(line);
  RememberLine(line);
}

void History::Forget() {
  typed_.clear();
  ForgetLines();
  for (const std::string& line : earlier_) RememberLine(line);
}

void History::Save() const {
  const std::optional<std::string> file = HistoryFile();
  if (!file || typed_.empty()) return;
  std::vector<std::string> lines = StoredLines();  // another shell may have added some
  lines.insert(lines.end(), typed_.begin(), typed_.end());
  const std::ptrdiff_t kept = std::min<std::ptrdiff_t>(std::ssize(lines), kMostLines);
  std::string text;
  for (auto line = lines.end() - kept; line != lines.end(); ++line) text += *line + '\n';
  WriteForOwner(*file, text);
}

}  // namespace host
