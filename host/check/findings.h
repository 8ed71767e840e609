#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/check/check.h"
#include "host/statement.h"

namespace host {

// What has been found in the lines up to the current one.
class Findings {
 public:
  explicit Findings(bool warns) : warns_(warns) {}

  // Goes on to the next line, which has to live as long as something is reported of it.
  void BeginLine(std::string_view line);
  size_t Line() const { return line_; }
  std::string_view Text() const { return text_; }

  void Report(Severity severity, size_t begin, size_t end, const std::string& text);
  void Report(Severity severity, const Statement& statement, Words words, const std::string& text);
  void Add(const Diagnostic& diagnostic) { found_.push_back(diagnostic); }
  bool Warns() const { return warns_; }

  // In the order of their places.
  std::vector<Diagnostic> Sorted();

 private:
  bool warns_;  // false: warnings are dropped
  std::vector<Diagnostic> found_;
  std::string_view text_;
  size_t line_ = 0;
};

}  // namespace host
