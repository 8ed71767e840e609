#include "host/testing/test_run.h"

#include <utility>

#include "host/text.h"

namespace host {
namespace {

constexpr const char* kBeforeHeadings = "(before the first heading)";
constexpr const char* kEndedBefore = "the run ended before it";
constexpr const char* kNotAsked = "--only asks for others";

}  // namespace

std::vector<TestCase> CasesOf(const Script& script, const std::string& only) {
  std::vector<TestCase> cases;
  bool asked = only.empty();
  script.ForEach([&](const Statement& statement, size_t line) {
    const bool heading = statement.form == Form::kHeading;
    if (!heading && (!cases.empty() || statement.IsComment())) return true;
    TestCase& added = cases.emplace_back();
    added.line = line;
    added.name = heading ? HeadingText(statement) : kBeforeHeadings;
    if (added.name.empty()) added.name = "(line " + std::to_string(line) + ")";
    const bool fits = UpperCase(added.name).find(UpperCase(only)) != std::string::npos;
    if (heading && !fits) added.state = CaseState::kPassedOver;
    asked = asked || (heading && fits);
    return true;
  });
  for (TestCase& each : cases) {
    if (!asked) each.state = CaseState::kPassedOver;
    each.reason = each.state == CaseState::kPassedOver ? kNotAsked : kEndedBefore;
  }
  return cases;
}

TestRun::TestRun(const Script& script, TestFile& file, Session& session, CaseRecorder& recorder,
                 bool failFast, Hooks hooks)
    : script_(script),
      file_(file),
      session_(session),
      recorder_(recorder),
      failFast_(failFast),
      hooks_(std::move(hooks)) {}

bool TestRun::Run() {
  const auto start = std::chrono::steady_clock::now();
  file_.begin = std::chrono::system_clock::now();
  script_.ForEach(
      [this](const Statement& statement, size_t line) { return Visit(statement, line); });
  End();
  for (; next_ < file_.cases.size(); ++next_) {
    TestCase& left = file_.cases[next_];
    if (left.state == CaseState::kNotRun) left.reason = why_;
    hooks_.caseDone(left);
  }
  file_.duration = std::chrono::steady_clock::now() - start;
  return ending_ != Ending::kAll;
}

void TestRun::Begin() {
  End();
  case_ = &file_.cases[next_++];
  over_ = case_->state == CaseState::kPassedOver;
  if (!over_) case_->reason.clear();
  recorder_.Enter(*case_);
  start_ = std::chrono::steady_clock::now();
}

void TestRun::End() {
  if (case_ == nullptr) return;
  case_->duration = std::chrono::steady_clock::now() - start_;
  if (!over_) case_->state = case_->checks > 0 ? CaseState::kPassed : CaseState::kUnchecked;
  hooks_.caseDone(*case_);
  case_ = nullptr;
}

bool TestRun::Visit(const Statement& statement, size_t line) {
  const bool begins = next_ < file_.cases.size() && file_.cases[next_].line == line;
  if (begins) Begin();
  if (over_) {
    session_.PassOver(statement);
    return true;
  }
  try {
    if (case_ != nullptr && !prepared_) hooks_.prepare();
    prepared_ = prepared_ || case_ != nullptr;
    if (case_ != nullptr && hooks_.interrupted()) throw Failure(kInterrupted, "interrupted");
    if (!session_.Run(statement, line)) Stop(Ending::kFile, "@stop() stands before it");
  } catch (const Failure& failure) {
    if (case_ != nullptr) Fail(failure, line);
    if (failure.Code() == kFileFault) throw;
    session_.PassOver(statement);
  }
  return ending_ == Ending::kNone;
}

void TestRun::Fail(const Failure& failure, size_t line) {
  over_ = true;
  case_->state = failure.Code() == kExpectationFailed ? CaseState::kFailed : CaseState::kBroken;
  case_->code = failure.Code();
  case_->reason = failure.what();
  case_->failedLine = line;
  if (failure.Code() == kInterrupted) Stop(Ending::kAll, "the run was interrupted");
  if (failure.Code() == kReaderFault) Stop(Ending::kFile, "there was trouble with reader or card");
  if (hooks_.cardIsGone()) Stop(Ending::kAll, "a command before it is not as recorded");
  if (failFast_) Stop(Ending::kAll, "a case failed before it");
}

void TestRun::Stop(Ending ending, const std::string& why) {
  ending_ = ending;
  why_ = why;
}

}  // namespace host
