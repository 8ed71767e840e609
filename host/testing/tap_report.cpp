#include "host/testing/tap_report.h"

#include <sstream>

#include "host/text.h"

namespace host {
namespace {

// Escapes #, which would begin a directive.
std::string Described(const std::string& text) {
  std::string escaped;
  for (const char c : Printable(text)) {
    if (c == '#' || c == '\\') escaped += '\\';
    escaped += c;
  }
  return escaped;
}

// Text in YAML's double quotes. After Printable it holds nothing that they cannot.
std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : Printable(text)) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + '"';
}

}  // namespace

TapReport::TapReport(std::ostream& out, size_t cases) : out_(out) {
  out_ << "TAP version 13\n1.." << cases << '\n' << std::flush;
}

void TapReport::Add(const TestFile& file, const TestCase& done) {
  const bool failed = HasFailed(done);
  out_ << (failed ? "not ok " : "ok ") << ++number_ << " - " << Described(done.name);
  if (done.state == CaseState::kUnchecked) out_ << " (no expectation)";
  if (done.state == CaseState::kPassedOver || done.state == CaseState::kNotRun) {
    out_ << " # SKIP " << Described(done.reason);
  }
  out_ << '\n';
  if (failed) {
    out_ << "  ---\n  file: " << Quoted(file.name) << "\n  line: " << done.failedLine
         << "\n  message: |\n";
    std::istringstream reason(done.reason);
    for (std::string line; std::getline(reason, line);) out_ << "    " << Printable(line) << '\n';
    out_ << "  duration_ms: " << Seconds(done.duration * 1000, 3) << "\n  ...\n";
  }
  out_ << std::flush;
}

}  // namespace host
