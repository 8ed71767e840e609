#include "host/testing/test_table.h"

#include <algorithm>

#include "host/testing/markup.h"
#include "host/text.h"

namespace host {
namespace {

constexpr size_t kLongestName = 64;  // a longer one moves its row's numbers

struct Appearance {
  const char* word;
  const char* colour;  // the terminal's colour sequence
};

Appearance AppearanceOf(CaseState state) {
  switch (state) {
    case CaseState::kPassed:
      return {"ok", "32"};
    case CaseState::kUnchecked:
      return {"-", "33"};
    case CaseState::kFailed:
      return {"FAIL", "1;37;41"};
    case CaseState::kBroken:
      return {"BROKEN", "1;37;41"};
    case CaseState::kPassedOver:
    case CaseState::kNotRun:
      break;
  }
  return {"not run", "2"};
}

class Table {
 public:
  Table(std::ostream& out, bool colour) : out_(out), colour_(colour) {}

  void PrintCases(const TestFile& file) {
    size_t longest = 4;
    for (const TestCase& each : file.cases)
      longest = std::max(longest, Width(Printable(each.name)));
    name_ = std::min(longest, kLongestName);
    out_ << '\n' << Paint("1", Printable(file.name)) << '\n';
    out_ << Paint("2",
                  "  line           " + Left("case", name_) + "  expectations  commands       time")
         << '\n';
    for (const TestCase& each : file.cases) {
      if (each.state != CaseState::kPassedOver) PrintCase(each);
    }
  }

  void PrintFailure(const TestFile& file, const TestCase& failed) {
    out_ << '\n'
         << Paint("1", Printable(failed.name)) << '\n'
         << PrintableLines(FailureOf(file, failed)) << '\n';
  }

  void PrintNumbers(const TestReport& report) {
    const CaseCounts counts = Count(report);
    const bool failed = counts.failed + counts.broken > 0;
    std::string text =
        Counted(counts.all, "case") + ": " + std::to_string(counts.passed) + " passed";
    const auto add = [&text](size_t count, const char* what) {
      if (count > 0) text += ", " + std::to_string(count) + what;
    };
    add(counts.failed, " failed");
    add(counts.broken, " broken off");
    add(counts.unchecked, " without an expectation");
    add(counts.notRun, " not run");
    add(counts.passedOver, " passed over");
    out_ << '\n'
         << (failed ? Paint("1;37;41", "failed") : Paint("32", "done")) << "  " << text
         << Paint("2", "\ntime    " + ShownDuration(report.duration)) << '\n';
    for (const std::string& reader : report.readers) {
      out_ << Paint("2", "on      " + Printable(reader)) << '\n';
    }
    out_ << std::flush;
  }

 private:
  std::string Paint(const std::string& sequence, const std::string& text) const {
    return colour_ ? "\x1b[" + sequence + "m" + text + "\x1b[0m" : text;
  }

  static size_t Width(const std::string& text) {
    return static_cast<size_t>(std::count_if(text.begin(), text.end(), BeginsCharacter));
  }

  static std::string Left(const std::string& text, size_t width) {
    return text + std::string(width - std::min(width, Width(text)), ' ');
  }

  static std::string Right(const std::string& text, size_t width) {
    return std::string(width - std::min(width, Width(text)), ' ') + text;
  }

  void PrintCase(const TestCase& each) {
    const Appearance appearance = AppearanceOf(each.state);
    const std::string word = appearance.word;
    out_ << Right(std::to_string(each.line), 6) << "  " << Paint(appearance.colour, word)
         << Left("", 9 - word.size());
    if (each.state == CaseState::kNotRun) {
      out_ << Printable(each.name) << Paint("2", "  " + each.reason) << '\n';
      return;
    }
    out_ << Left(Printable(each.name), name_) << Right(std::to_string(each.checks), 14)
         << Right(std::to_string(each.commands), 10) << Right(ShownDuration(each.duration), 11)
         << '\n';
  }

  std::ostream& out_;
  bool colour_;
  size_t name_ = 0;  // width
};

}  // namespace

void ProgressLine::Count(const TestCase& done) {
  ++done_;
  if (HasFailed(done)) ++failed_;
  Show();
}

void ProgressLine::Show() {
  const Clock::time_point now = Clock::now();
  if (!shown_ || now < next_) return;
  next_ = now + std::chrono::milliseconds(100);
  const std::string text = "  " + std::to_string(done_) + " of " + Counted(cases_, "case") + ", " +
                           std::to_string(failed_) + " failed, " + Seconds(now - start_, 1) + " s";
  out_ << '\r' << text << std::string(width_ - std::min(width_, text.size()), ' ') << std::flush;
  width_ = text.size();
}

void ProgressLine::Clear() {
  if (width_ > 0) out_ << '\r' << std::string(width_, ' ') << '\r' << std::flush;
  width_ = 0;
}

void PrintTable(std::ostream& out, const TestReport& report, bool colour, bool failuresAlone) {
  Table table(out, colour);
  if (!failuresAlone) {
    for (const TestFile& file : report.files) table.PrintCases(file);
  }
  for (const TestFile& file : report.files) {
    for (const TestCase& each : file.cases) {
      if (HasFailed(each)) table.PrintFailure(file, each);
    }
  }
  if (!failuresAlone) table.PrintNumbers(report);
}

}  // namespace host
