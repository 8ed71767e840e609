#include "host/help_text.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>

#include "host/text.h"

namespace host {
namespace {

constexpr size_t kWidth = 79;
constexpr size_t kFull = 55;  // a shorter line ends its paragraph

// The column of a line's text, or of its second column if it has one.
size_t HangOf(const std::string& line) {
  const size_t indent = std::min(line.find_first_not_of(' '), line.size());
  const size_t gap = line.find("  ", indent);
  const size_t second = gap == line.npos ? gap : line.find_first_not_of(' ', gap);
  return second == line.npos ? indent : second;
}

void Wrap(std::string& out, std::string line) {
  const size_t hang = HangOf(line);
  const bool command = line.starts_with("  orvane ");
  for (size_t end = 0; line.size() > kWidth && !command;) {
    end = line.rfind(' ', kWidth);
    if (end == line.npos || end <= hang) break;
    out += line.substr(0, end) + '\n';
    line = std::string(hang, ' ') + line.substr(end + 1);
  }
  out += line + '\n';
}

class HelpFormatter : public CLI::Formatter {
 public:
  std::string make_help(const CLI::App* app, std::string name,
                        CLI::AppFormatMode mode) const override {
    return FitScreen(CLI::Formatter::make_help(app, std::move(name), mode));
  }
};

}  // namespace

std::string FitScreen(const std::string& text) {
  std::istringstream in(text);
  std::string out, paragraph;
  size_t last = 0;  // the length of the line before
  for (std::string line; std::getline(in, line); last = line.size()) {
    const size_t indent = std::min(line.find_first_not_of(' '), line.size());
    const bool goesOn = !line.empty() && last > kFull && indent == HangOf(paragraph) &&
                        !IsDigit(line[indent]) && (indent == 0 || line[indent] != '-') &&
                        !line.starts_with("Exit code");
    if (goesOn) {
      paragraph += ' ' + line.substr(indent);
      continue;
    }
    if (last > 0 || !out.empty() || !paragraph.empty()) Wrap(out, paragraph);
    paragraph = line;
  }
  Wrap(out, paragraph);
  return out;
}

std::shared_ptr<CLI::FormatterBase> MakeHelpFormatter() {
  return std::make_shared<HelpFormatter>();
}

}  // namespace host
