#pragma once

#include <chrono>
#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace host {

using Moment = std::chrono::system_clock::time_point;
using Duration = std::chrono::nanoseconds;

// A command and its outcome, without what must be hidden.
struct ReportedExchange {
  std::string name;                       // of the instruction; may be empty
  std::string header, lengthField, data;  // digits
  std::string expectedLength;             // digits of Le
  size_t hiddenOctets = 0;                // the number of left-out data octets
  bool answered = false;
  std::string response;    // digits, without the status word
  std::string statusWord;  // may be empty
  std::string note;        // what the status word may be instead
  Moment begin;
  Duration duration{};
};

// What a case did, in order.
struct Step {
  enum class Kind { kStatement, kValue, kReader, kAtr, kExchange, kMet, kFailed };

  Kind kind;
  size_t line = 0;      // of kStatement; 0: none
  std::string text;     // as in a trace; kAtr: digits; kExchange: empty
  size_t exchange = 0;  // the index in the case's exchanges
};

enum class CaseState {
  kPassed,      // at least one expectation, and all held
  kUnchecked,   // ran to its end without any expectation
  kFailed,      // an expectation did not hold
  kBroken,      // could not go on: a fault of the script, or trouble with reader or card
  kPassedOver,  // not among the requested ones
  kNotRun,      // the file or the run ended before it
};

struct TestCase {
  std::string name;
  size_t line = 1;  // of its heading
  CaseState state = CaseState::kNotRun;
  std::string reason;     // why it failed or did not run; may have several lines
  int code = 0;           // the exit code for this reason
  size_t failedLine = 0;  // 0: none
  size_t checks = 0;      // the expectations that held
  size_t commands = 0;    // the commands that were sent
  Duration duration{};
  std::vector<Step> steps = {};
  std::vector<ReportedExchange> exchanges = {};
};

struct TestFile {
  std::string name;
  Moment begin;
  Duration duration{};
  std::vector<TestCase> cases;
};

struct CaseCounts {
  size_t all = 0, passed = 0, unchecked = 0, failed = 0, broken = 0, passedOver = 0, notRun = 0;

  void Add(CaseState state);
};

struct TestReport {
  std::vector<TestFile> files;
  std::set<std::string> readers;  // the readers that were opened, and what replaced a card
  Duration duration{};
  std::string counted = "case";  // what a case of it is to people
};

CaseCounts Count(const TestFile& file);
CaseCounts Count(const TestReport& report);

bool HasFailed(const TestCase& done);

// FILE:LINE and the reason.
std::string FailureOf(const TestFile& file, const TestCase& failed);

// Seconds with this number of digits behind the point.
std::string Seconds(Duration duration, int digits);

// In the form for people: 850 µs, 12.3 ms, 4.56 s, 2 min 3 s.
std::string ShownDuration(Duration duration);

}  // namespace host
