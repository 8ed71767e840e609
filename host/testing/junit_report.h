#pragma once

#include <string>

#include "host/testing/test_report.h"

namespace host {

// The report in the XML form that CI servers read: a test suite a file, a test case a case. Failed
// expectations are failures, what broke a case off is an error, what did not run is skipped.
std::string JunitReport(const TestReport& report);

}  // namespace host
