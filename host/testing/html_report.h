#pragma once

#include <string>

#include "host/testing/test_report.h"

namespace host {

// The report as a page for people. The page contains all it needs, so it works without a network.
std::string HtmlReport(const TestReport& report);

}  // namespace host
