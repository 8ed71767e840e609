#pragma once

#include <ostream>

#include "host/testing/test_report.h"

namespace host {

// Writes test runs line by line, as the Test Anything Protocol, version 13, has it.
class TapReport {
 public:
  TapReport(std::ostream& out, size_t cases);

  // What came of the next case.
  void Add(const TestFile& file, const TestCase& done);

 private:
  std::ostream& out_;
  size_t number_ = 0;
};

}  // namespace host
