#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/script.h"
#include "host/session.h"
#include "host/testing/case_recorder.h"
#include "host/testing/test_report.h"

namespace host {

// The cases of a script, none of which has run: each heading opens one, and statements before the
// first heading are one of their own. Those whose names lack the text, in either case, are passed
// over; what stands before the first heading is if all others are.
std::vector<TestCase> CasesOf(const Script& script, const std::string& only);

// Runs the cases of one file.
class TestRun {
 public:
  struct Hooks {
    std::function<void()> prepare;                  // what the first case does first
    std::function<void(const TestCase&)> caseDone;  // also of those that do not run
    std::function<bool()> interrupted;
    std::function<bool()> cardIsGone;  // a replayed one, which has nothing more to say
  };

  TestRun(const Script& script, TestFile& file, Session& session, CaseRecorder& recorder,
          bool failFast, Hooks hooks);

  // False if no other file should run either. Throws Failure (kFileFault) alone.
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
  size_t next_ = 0;           // case
  TestCase* case_ = nullptr;  // the one that runs
  bool prepared_ = false;
  bool over_ = false;  // nothing more of the case runs
  Ending ending_ = Ending::kNone;
  std::string why_;  // the cases behind do not run
  std::chrono::steady_clock::time_point start_;
};

}  // namespace host
