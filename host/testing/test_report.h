#pragma once

#include <chrono>
#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace host {

using Moment = std::chrono::system_clock::time_point;
using Duration = std::chrono::nanoseconds;

// A command and what came of it, without what may not be shown.
struct ReportedExchange {
  std::string name;                       // of the instruction; may be empty
  std::string header, lengthField, data;  // digits
  std::string expectedLength;             // digits of Le
  size_t hiddenOctets = 0;                // of data that is left out
  bool answered = false;
  std::string response;    // digits, without the status word
  std::string statusWord;  // may be empty
  std::string note;        // what the status word may be instead
  Moment begin;
  Duration duration{};
};

// What a case did, in its order.
struct Step {
  enum class Kind { kStatement, kValue, kReader, kAtr, kExchange, kMet, kFailed };

  Kind kind;
  size_t line = 0;      // of kStatement; 0: none
  std::string text;     // as a trace would show it; of kAtr digits; of kExchange empty
  size_t exchange = 0;  // its place in the case's exchanges
};

enum class CaseState {
  kPassed,      // with one expectation that held at least
  kUnchecked,   // to its end, without any expectation
  kFailed,      // an expectation did not hold
  kBroken,      // it could not go on: a fault of the script, or trouble with reader or card
  kPassedOver,  // not one of those that were asked for
  kNotRun,      // the file or the run ended before
};

struct TestCase {
  std::string name;
  size_t line = 1;  // of its heading
  CaseState state = CaseState::kNotRun;
  std::string reason;     // why it failed or did not run; may have several lines
  int code = 0;           // the exit code that goes with it
  size_t failedLine = 0;  // 0: none
  size_t checks = 0;      // that held
  size_t commands = 0;    // that were sent
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
  std::set<std::string> readers;  // that were opened, and what stood in a card's place
  Duration duration{};
};

CaseCounts Count(const TestFile& file);
CaseCounts Count(const TestReport& report);

bool HasFailed(const TestCase& done);

// FILE:LINE and the reason.
std::string FailureOf(const TestFile& file, const TestCase& failed);

// Seconds with so many digits behind the point.
std::string Seconds(Duration duration, int digits);

// As people read it: 850 µs, 12.3 ms, 4.56 s, 2 min 3 s.
std::string ShownDuration(Duration duration);

}  // namespace host
