#include "host/testing/junit_report.h"

#include <ctime>
#include <sstream>

#include "host/testing/markup.h"

namespace host {
namespace {

std::string Attribute(const char* name, const std::string& value) {
  std::string text = " ";
  return text.append(name).append("=\"").append(Markup(value)).append("\"");
}

std::string Timestamp(Moment moment) {
  const std::time_t seconds = std::chrono::system_clock::to_time_t(moment);
  char text[32];
  std::strftime(text, sizeof(text), "%Y-%m-%dT%H:%M:%S", std::gmtime(&seconds));
  return text;
}

std::string CountAttributes(const CaseCounts& counts, Duration duration) {
  return Attribute("tests", std::to_string(counts.all)) +
         Attribute("failures", std::to_string(counts.failed)) +
         Attribute("errors", std::to_string(counts.broken)) +
         Attribute("skipped", std::to_string(counts.passedOver + counts.notRun)) +
         Attribute("time", Seconds(duration, 6));
}

void WriteCase(std::ostream& out, const TestFile& file, const TestCase& each) {
  out << "    <testcase" << Attribute("name", each.name) << Attribute("classname", file.name)
      << Attribute("time", Seconds(each.duration, 6)) << Attribute("file", file.name)
      << Attribute("line", std::to_string(each.line));
  if (HasFailed(each)) {
    const bool unmet = each.state == CaseState::kFailed;
    const char* const element = unmet ? "failure" : "error";
    const std::string text = FailureOf(file, each);
    out << ">\n      <" << element << Attribute("message", text.substr(0, text.find('\n')))
        << Attribute("type", unmet ? "expectation" : "trouble") << '>' << Markup(text) << "</"
        << element << ">\n    </testcase>\n";
  } else if (each.state == CaseState::kPassedOver || each.state == CaseState::kNotRun) {
    out << ">\n      <skipped" << Attribute("message", each.reason) << "/>\n    </testcase>\n";
  } else {
    out << "/>\n";
  }
}

}  // namespace

std::string JunitReport(const TestReport& report) {
  std::ostringstream out;
  out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites"
      << CountAttributes(Count(report), report.duration) << ">\n";
  for (const TestFile& file : report.files) {
    out << "  <testsuite" << Attribute("name", file.name)
        << CountAttributes(Count(file), file.duration)
        << Attribute("timestamp", Timestamp(file.begin)) << ">\n";
    for (const TestCase& each : file.cases) WriteCase(out, file, each);
    out << "  </testsuite>\n";
  }
  out << "</testsuites>\n";
  return out.str();
}

}  // namespace host
