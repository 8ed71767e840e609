#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/script.h"
#include "host/session.h"
#include "host/testing/case_recorder.h"
#include "host/testing/test_report.h"

namespace host {

// The cases of a script, none of which has run. Each heading begins a case; statements before the
// first heading are a case too. Cases whose names do not contain the text (in either case) are
// passed over. The case before the first heading is passed over only if all others are.
std::vector<TestCase> CasesOf(const Script& script, const std::string& only);

// Runs the cases of one file.
class TestRun {
 public:
  struct Hooks {
    std::function<void()> prepare;                  // runs before the first case
    std::function<void(const TestCase&)> caseDone;  // also called for cases that do not run
    std::function<bool()> interrupted;
    std::function<bool()> cardIsGone;  // true once a replay differs from its recording
  };

  TestRun(const Script& script, TestFile& file, Session& session, CaseRecorder& recorder,
          bool failFast, Hooks hooks);

  // False if no further file should run. Throws only Failure (kFileFault).
  bool Run();

 private:
  enum class Ending { kNone, kFile, kAll };

  bool Visit(const Statement& statement, size_t line);
  void Begin();
  void End();
  void Fail(const Failure& failure, size_t line);
  void Stop(Ending ending, const std::string& why);

  const Script& script_;
  TestFile& file_;
  Session& session_;
  CaseRecorder& recorder_;
  bool failFast_;
  Hooks hooks_;
  size_t next_ = 0;           // the index of the next case
  TestCase* case_ = nullptr;  // the running one
  bool prepared_ = false;
  bool over_ = false;  // the rest of the case does not run
  Ending ending_ = Ending::kNone;
  std::string why_;  // why the remaining cases do not run
  std::chrono::steady_clock::time_point start_;
};

}  // namespace host
