#pragma once

#include <string>

#include "host/testing/test_report.h"

namespace host {

// The report as a page for people, with everything that it shows in it: no network is needed.
std::string HtmlReport(const TestReport& report);

}  // namespace host
