#include "host/testing/test_report.h"

#include <array>
#include <charconv>

namespace host {
namespace {

std::string Fixed(double value, int digits) {
  std::array<char, 64> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value,
                                 std::chars_format::fixed, digits);
  return {text.data(), end.ptr};
}

}  // namespace

void CaseCounts::Add(CaseState state) {
  ++all;
  switch (state) {
    case CaseState::kPassed:
      ++passed;
      break;
    case CaseState::kUnchecked:
      ++unchecked;
      break;
    case CaseState::kFailed:
      ++failed;
      break;
    case CaseState::kBroken:
      ++broken;
      break;
    case CaseState::kPassedOver:
      ++passedOver;
      break;
    case CaseState::kNotRun:
      ++notRun;
      break;
  }
}

CaseCounts Count(const TestFile& file) {
  CaseCounts counts;
  for (const TestCase& each : file.cases) counts.Add(each.state);
  return counts;
}

CaseCounts Count(const TestReport& report) {
  CaseCounts counts;
  for (const TestFile& file : report.files) {
    for (const TestCase& each : file.cases) counts.Add(each.state);
  }
  return counts;
}

bool HasFailed(const TestCase& done) {
  return done.state == CaseState::kFailed || done.state == CaseState::kBroken;
}

std::string FailureOf(const TestFile& file, const TestCase& failed) {
  return file.name + ":" + std::to_string(failed.failedLine) + ": " + failed.reason;
}

std::string Seconds(Duration duration, int digits) {
  return Fixed(static_cast<double>(duration.count()) / 1e9, digits);
}

std::string ShownDuration(Duration duration) {
  const auto nanoseconds = static_cast<double>(duration.count());
  if (nanoseconds < 1e6) return Fixed(nanoseconds / 1e3, 0) + " \u00B5s";
  if (nanoseconds < 1e9) return Fixed(nanoseconds / 1e6, nanoseconds < 1e8 ? 1 : 0) + " ms";
  if (nanoseconds < 6e10) return Fixed(nanoseconds / 1e9, 2) + " s";
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(duration).count();
  return std::to_string(seconds / 60) + " min " + std::to_string(seconds % 60) + " s";
}

}  // namespace host
