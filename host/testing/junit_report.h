#pragma once

#include <string>

#include "host/testing/test_report.h"

namespace host {

// The report in the XML form that CI servers read: a test suite per file, a test case per case. A
// failed expectation is a failure, a broken-off case an error, a case that did not run skipped.
std::string JunitReport(const TestReport& report);

}  // namespace host
