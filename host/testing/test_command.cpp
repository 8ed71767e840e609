#include "host/testing/test_command.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>

#include "host/check/check_file.h"
#include "host/definitions.h"
#include "host/failure.h"
#include "host/listeners.h"
#include "host/platform.h"
#include "host/readers.h"
#include "host/script.h"
#include "host/session.h"
#include "host/testing/case_recorder.h"
#include "host/testing/html_report.h"
#include "host/testing/junit_report.h"
#include "host/testing/report_file.h"
#include "host/testing/tap_report.h"
#include "host/testing/test_run.h"
#include "host/testing/test_table.h"
#include "host/text.h"

namespace host {
namespace {

std::filesystem::path Place(const std::string& file) {
  std::error_code error;
  const auto path = std::filesystem::absolute(std::u8string(file.begin(), file.end()), error);
  return std::filesystem::weakly_canonical(path, error);
}

// A report must not overwrite a script.
void CheckFiles(const Options& options) {
  if (std::count(options.tests.begin(), options.tests.end(), "-") > 1) {
    throw Failure(kUsageFault, "standard input can be read once");
  }
  std::vector<std::string> taken = options.tests;
  taken.insert(taken.end(), options.variableFiles.begin(), options.variableFiles.end());
  for (const std::string& file : {options.record, options.replay}) {
    if (!file.empty()) taken.push_back(file);
  }
  for (const std::string& report : {options.junit, options.html}) {
    if (report.empty()) continue;
    if (report == "-") throw Failure(kUsageFault, "a report goes to a file; --tap is printed");
    for (const std::string& file : taken) {
      if (Place(file) != Place(report)) continue;
      throw Failure(kUsageFault, "a report would take the place of " + Printable(file));
    }
    taken.push_back(report);
  }
}

// A run of `orvane test`, in the order of its steps.
class TestSession {
 public:
  explicit TestSession(const Options& options)
      : options_(options),
        beginning_(CircumstancesOf(options)),
        colour_(WantsColour(options)),
        listeners_(options),
        silent_(nullptr),
        recorder_(options.verbose && !options.quiet && !options.tap ? std::cout : silent_,
                  {.colour = colour_, .tlv = options.tlv}, !options.html.empty()) {
    CheckFiles(options);
    for (const std::string& file : options.tests) scripts_.emplace_back(file);
    ReadCases();
    StoreDefinitions(beginning_.variables, secrets_);
    LookAtAll();
    if (!options.junit.empty()) junit_.emplace(options.junit);
    if (!options.html.empty()) html_.emplace(options.html);
  }

  int Run() {
    NoteInterrupts();
    const size_t cases = Count(report_).all;
    const bool progress = !options_.tap && !options_.quiet && !options_.verbose;
    line_.emplace(std::cout, progress && OutputIsTerminal(), cases);
    if (options_.tap) tap_.emplace(std::cout, cases);
    try {
      RunFiles();
    } catch (const Failure&) {  // standard output is gone, but the reports can still be written
      WriteReports();
      throw;
    }
    line_->Clear();
    listeners_.Finish();
    report_.readers = recorder_.Readers();
    if (!options_.replay.empty()) report_.readers.insert("the recording " + options_.replay);
    const std::vector<Failure> unwritten = WriteReports();
    if (!options_.tap) PrintTable(std::cout, report_, colour_, options_.quiet);
    for (const Failure& failure : unwritten) PrintFailure(failure);
    const int code = CodeOf(report_);
    return code == kDone && !unwritten.empty() ? kFileFault : code;
  }

 private:
  void ReadCases() {
    for (const Script& script : scripts_) {
      TestFile& file = report_.files.emplace_back();
      file.name = script.Name();
      file.begin = std::chrono::system_clock::now();
      file.cases = CasesOf(script, options_.only);
      if (file.cases.empty()) throw Failure(kScriptFault, Printable(file.name) + " has no case");
    }
    const CaseCounts counts = Count(report_);
    if (counts.all == counts.passedOver) {
      throw Failure(kUsageFault, "no case's name has \"" + Printable(options_.only) + '"');
    }
  }

  void LookAtAll() {
    Readers none(options_.kind, options_.simulate, "");
    Session session(none, secrets_, recorder_, {.showSecrets = options_.showSecrets});
    for (const Script& script : scripts_) LookAtScript(script, session);
    RefuseErrors(scripts_, beginning_);
  }

  void RunFiles() {
    const auto start = std::chrono::steady_clock::now();
    bool goesOn = true;
    for (size_t at = 0; at < scripts_.size(); ++at) {
      if (goesOn) {
        goesOn = RunFile(scripts_[at], report_.files[at]);
      } else {
        PassOver(report_.files[at]);
      }
    }
    report_.duration = std::chrono::steady_clock::now() - start;
  }

  // Each file begins with the definitions and with readers of its own.
  bool RunFile(const Script& script, TestFile& file) {
    Readers readers(options_.kind, options_.simulate,
                    EnvironmentVariable("ORVANE_READER").value_or(""), options_.coldReset);
    readers.Select("0");
    std::vector<ExchangeListener*> listeners = {&recorder_};
    listeners_.AddTo(listeners);
    Session session(readers, secrets_, recorder_,
                    {.showSecrets = options_.showSecrets, .listeners = std::move(listeners)});
    StoreDefinitions(beginning_.variables, secrets_);
    LookAtScript(script, session);
    TestRun run(script, file, session, recorder_, options_.failFast,
                {.prepare =
                     [&] {
                       if (!options_.reader.empty()) session.Open(options_.reader);
                     },
                 .caseDone = [&](const TestCase& done) { CaseDone(file, done); },
                 .interrupted =
                     [this] {
                       line_->Show();
                       return Interrupted();
                     },
                 .cardIsGone = [this] { return listeners_.Differ(); }});
    return run.Run();
  }

  void PassOver(const TestFile& file) {
    for (const TestCase& each : file.cases) CaseDone(file, each);
  }

  void CaseDone(const TestFile& file, const TestCase& done) {
    line_->Count(done);
    if (tap_) tap_->Add(file, done);
  }

  // Writes each report even if another fails. Gives the failures.
  std::vector<Failure> WriteReports() {
    std::vector<Failure> failures;
    const auto write = [&](std::optional<ReportFile>& file, auto make) {
      try {
        if (file) file->Write(make(report_));
      } catch (const Failure& failure) {
        failures.push_back(failure);
      }
    };
    write(junit_, JunitReport);
    write(html_, HtmlReport);
    return failures;
  }

  static int CodeOf(const TestReport& report) {
    int code = kDone;
    for (const TestFile& file : report.files) {
      for (const TestCase& each : file.cases) {
        if (each.code == kExpectationFailed || each.code == kInterrupted) return each.code;
        if (code == kDone) code = each.code;
      }
    }
    return code;
  }

  const Options& options_;
  Circumstances beginning_;
  bool colour_;
  Listeners listeners_;
  std::ostream silent_;
  CaseRecorder recorder_;
  Secrets secrets_{Secrets::Flow::kInParts};
  std::vector<Script> scripts_;
  TestReport report_;
  std::optional<ReportFile> junit_, html_;
  std::optional<TapReport> tap_;
  std::optional<ProgressLine> line_;
};

}  // namespace

int TestFiles(const Options& options) { return TestSession(options).Run(); }

}  // namespace host
