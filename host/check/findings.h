#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/check/check.h"
#include "host/statement.h"

namespace host {

// The faults found in the lines so far.
class Findings {
 public:
  explicit Findings(bool warns) : warns_(warns) {}

  // Begins the next line. The line must live as long as faults of it are reported.
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
