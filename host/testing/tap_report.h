#pragma once

#include <ostream>

#include "host/testing/test_report.h"

namespace host {

// Writes test runs line by line, in the Test Anything Protocol, version 13.
class TapReport {
 public:
  TapReport(std::ostream& out, size_t cases);

  // Writes the outcome of the next case.
  void Add(const TestFile& file, const TestCase& done);

 private:
  std::ostream& out_;
  size_t number_ = 0;
};

}  // namespace host
