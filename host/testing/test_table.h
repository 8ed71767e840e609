#pragma once

#include <chrono>
#include <ostream>
#include <string>

#include "host/testing/test_report.h"

namespace host {

// A line on a terminal that shows the progress of a run, and stays until it is cleared.
class ProgressLine {
 public:
  // If `shown` is false, it does nothing.
  ProgressLine(std::ostream& out, bool shown, size_t cases)
      : out_(out), shown_(shown), cases_(cases) {}

  void Count(const TestCase& done);
  // Redraws the line, at most ten times a second.
  void Show();
  void Clear();

 private:
  using Clock = std::chrono::steady_clock;

  std::ostream& out_;
  bool shown_;
  size_t cases_;
  size_t done_ = 0;
  size_t failed_ = 0;
  size_t width_ = 0;  // of the text on the line
  Clock::time_point start_ = Clock::now();
  Clock::time_point next_ = start_;
};

// Prints the outcome of a run: its cases, the failures with their reasons, and the numbers. With
// failuresAlone only the failures.
void PrintTable(std::ostream& out, const TestReport& report, bool colour, bool failuresAlone);

}  // namespace host
