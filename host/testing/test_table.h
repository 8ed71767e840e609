#pragma once

#include <chrono>
#include <ostream>
#include <string>

#include "host/testing/test_report.h"

namespace host {

// One line on a terminal that tells how far a run is: it stays where it is until it is cleared.
class ProgressLine {
 public:
  // A line that is not shown does nothing.
  ProgressLine(std::ostream& out, bool shown, size_t cases)
      : out_(out), shown_(shown), cases_(cases) {}

  void Count(const TestCase& done);
  // Shows it anew, at most ten times a second.
  void Show();
  void Clear();

 private:
  using Clock = std::chrono::steady_clock;

  std::ostream& out_;
  bool shown_;
  size_t cases_;
  size_t done_ = 0;
  size_t failed_ = 0;
  size_t width_ = 0;  // of what stands there
  Clock::time_point start_ = Clock::now();
  Clock::time_point next_ = start_;
};

// Prints what came of a run: its cases, what failed and why, and the numbers. With failuresAlone
// nothing but what failed.
void PrintTable(std::ostream& out, const TestReport& report, bool colour, bool failuresAlone);

}  // namespace host
