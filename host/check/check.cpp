#include "host/check/check.h"

#include <algorithm>
#include <array>

#include "host/check/command_check.h"
#include "host/check/findings.h"
#include "host/check/known_variables.h"
#include "host/check/operand_check.h"
#include "host/expectation.h"
#include "host/failure.h"
#include "host/reader_address.h"
#include "host/text.h"

namespace host {
namespace {

constexpr size_t kMostForHost = 511;

bool IsNoSlot(const Value& value) {
  return value.begin.size() > 2 || value.Most() < 2 ||
         std::any_of(value.begin.begin(), value.begin.end(),
                     [](char c) { return c != Value::kUnknown && !IsHexDigit(c); });
}

// True if a value is known and is not whole octets in hexadecimal.
bool MakesNoPattern(const Value& value) {
  const std::string digits = WithoutBlanks(value.begin);
  return value.IsExact() &&
         (digits.size() % 2 != 0 || !std::all_of(digits.begin(), digits.end(), IsHexDigit));
}

// The pattern's status word if no card gives it; else empty.
std::string ImpossibleStatusWord(const Expectation::Pattern& pattern) {
  constexpr size_t kDigits = 4;
  const Expectation::Part& last = pattern.back();
  if (last.kind != Expectation::Part::Kind::kDigits || last.text.size() < kDigits) return "";
  const std::string word = last.text.substr(last.text.size() - kDigits);
  const bool possible = word[0] == 'X' || word[0] == '9' || (word[0] == '6' && word[1] != '0');
  return possible ? "" : word;
}

}  // namespace

class Checker::Work {
 public:
  explicit Work(const Circumstances& circumstances) : circumstances_(circumstances) { Begin(); }

  void Read(std::string_view line) {
    try {
      return Read(ReadStatement(line));
    } catch (const MalformedStatement& fault) {
      findings_.BeginLine(line);
      findings_.Report(Severity::kError, fault.Place(), line.size(), FirstLine(fault));
      GuessEffect(line);
    } catch (const Failure& fault) {  // from an expectation
      findings_.BeginLine(line);
      findings_.Report(Severity::kError, line.find(';'), line.size(), FirstLine(fault));
    }
  }

  void Read(const Statement& statement) {
    findings_.BeginLine(statement.text);
    if (statement.form == Form::kExpectation && !belowCommand_) {
      const std::string_view line = statement.text;
      return findings_.Report(Severity::kError, line.find(';'), line.size(),
                              FirstLine(NoCommandAbove()));
    }
    belowCommand_ = statement.Sends() || (belowCommand_ && statement.IsComment());
    if (statement.form == Form::kNothing || statement.form == Form::kHeading) return;
    if (stop_ != 0) TellUnreachable(statement);
    if (statement.form == Form::kExpectation) return CheckExpectation(statement);
    if (statement.form == Form::kAssignment) return CheckAssignment(statement);
    if (statement.IsForHost()) return CheckForHost(statement);
    CheckCommand(statement);
  }

  Value Follow(const Statement& statement) {
    findings_.BeginLine(statement.text);
    return OperandCheck(statement, findings_, Variables()).Follow(nullptr).value;
  }

  std::vector<Diagnostic> End() {
    variables_.End();
    std::vector<Diagnostic> found = findings_.Sorted();
    Begin();
    return found;
  }

 private:
  void Begin() {
    findings_ = Findings(circumstances_.warns);
    stop_ = 0;
    unreachableTold_ = belowCommand_ = false;
    reader_ = 0;
    kinds_.fill(std::nullopt);
    kinds_[0] = circumstances_.kind;
    for (const auto& [name, value] : circumstances_.variables) {
      variables_.Define(name, Exactly(value));
    }
  }

  // After @stop() nothing is stored, so the variables are not known.
  KnownVariables* Variables() { return stop_ == 0 ? &variables_ : nullptr; }

  // Assumes that a line that cannot be read stores a variable and brings an answer, so that the
  // lines below it are not reported for it.
  void GuessEffect(std::string_view line) {
    belowCommand_ = true;
    const size_t begin = line.find_first_not_of(" \t");
    const size_t end = std::min(line.find_first_of(" \t(),=", begin), line.size());
    if (line[begin] == '%') variables_.Define(line.substr(begin, end - begin), AnyText());
    variables_.DefineAnswer();
    variables_.Define("%ATR", DigitsUpTo(SIZE_MAX));
  }

  void TellUnreachable(const Statement& statement) {
    if (unreachableTold_) return;
    unreachableTold_ = true;
    findings_.Report(
        Severity::kWarning, statement.text.find_first_not_of(" \t"), statement.text.size(),
        "nothing runs from here on: @stop() ends the script in line " + std::to_string(stop_));
  }

  void CheckAssignment(const Statement& statement) {
    const Value value = OperandCheck(statement, findings_, Variables()).Follow(nullptr).value;
    if (stop_ != 0) return;
    const Word& target = statement.words[0];
    const std::string name = statement.TextOf(target);
    if (target.kind == WordKind::kVariable) {
      return variables_.Assign(name, value, target.begin, target.end);
    }
    findings_.Report(Severity::kWarning, statement, {0, 0},
                     "no script can read " + name + ": its name has no %");
  }

  void CheckCommand(const Statement& statement) {
    const Wanted wanted = {kCommandText, std::string(kCommandText.name)};
    const auto [value, sound] = OperandCheck(statement, findings_, Variables()).Follow(&wanted);
    if (sound) CheckCommandText(findings_, statement, value, kinds_[reader_]);
    if (stop_ == 0) variables_.DefineAnswer();
  }

  void CheckForHost(const Statement& statement) {
    const std::vector<Value> arguments =
        OperandCheck(statement, findings_, Variables()).FollowArguments();
    const std::string_view keyword = statement.invocations.back().builtin->keyword;
    if (keyword == "@COMPARE") return CheckComparison(statement, arguments);
    if (stop_ != 0) return;
    if (keyword == "@RESET") variables_.Define("%ATR", DigitsUpTo(SIZE_MAX));
    if (keyword == "@STOP") stop_ = findings_.Line();
    if (arguments.empty()) return;
    CheckHandedOver(statement, keyword, arguments[0]);
    try {
      if (keyword == "@SETREADER") SelectReader(arguments[0]);
      if (keyword == "@OPENREADER") OpenReader(arguments[0]);
    } catch (const Failure& failure) {
      // A run ends there, with another exit code than an error's. The text has the argument in it,
      // and a variable's value may be a secret.
      if (statement.text.find('%') != statement.text.npos) return;
      findings_.Report(Severity::kWarning, statement, {0, statement.end - 1}, failure.what());
    }
  }

  void CheckHandedOver(const Statement& statement, std::string_view keyword, const Value& value) {
    const Words all = {0, statement.end - 1};
    if (value.begin.size() > kMostForHost) {
      findings_.Report(SeverityFor(value), statement, all,
                       "the argument has more than 511 characters, the most that a command can "
                       "hand over to its host");
    } else if (keyword == "@SETSLOT" && IsNoSlot(value)) {
      findings_.Report(SeverityFor(value), statement, all,
                       "a slot is two hexadecimal digits, such as 00 or 0C");
    }
  }

  void SelectReader(const Value& number) {
    if (number.IsExact()) {
      reader_ = ReadReaderNumber(number.begin);
    } else {
      kinds_.fill(std::nullopt);
    }
  }

  void OpenReader(const Value& address) {
    kinds_[reader_] = std::nullopt;
    if (!address.IsExact()) return;
    kinds_[reader_] = ReadReaderAddress(address.begin, circumstances_.defaultKind).kind;
  }

  void CheckComparison(const Statement& statement, const std::vector<Value>& arguments) {
    const Value& left = arguments[0];
    const Value& right = arguments[1];
    const Value& expected = arguments[2];
    const bool same = left.IsExact() && right.IsExact() && left.begin == right.begin;
    const bool never = expected.IsExact() && ((expected.begin == "1" && !CanBeEqual(left, right)) ||
                                              (expected.begin == "0" && same));
    if (!never) return;
    findings_.Report(Severity::kWarning, statement, {0, statement.end - 1},
                     same ? "this never holds: the two are always equal"
                          : "this never holds: the two can't be equal");
  }

  void CheckExpectation(const Statement& statement) {
    const size_t begin = statement.text.find_first_not_of(" \t", *FindExpectation(statement.text));
    const Expectation expectation = ReadExpectation(statement.text, begin);
    size_t at = begin;
    for (const Expectation::Pattern& pattern : expectation.patterns) {
      for (const Expectation::Part& part : pattern) {
        if (part.kind != Expectation::Part::Kind::kVariable) continue;
        at = statement.text.find(part.text, at);
        CheckExpected(part.text, at, &pattern == expectation.patterns.data());
        at += part.text.size();
      }
      const std::string word = ImpossibleStatusWord(pattern);
      if (word.empty()) continue;
      findings_.Report(Severity::kWarning, begin, statement.text.size(),
                       word +
                           " is no status word, and never comes: one begins with 6, but not "
                           "60, or with 9");
    }
  }

  // A pattern behind "or" is only compared if the patterns before it do not match.
  void CheckExpected(const std::string& name, size_t at, bool first) {
    if (stop_ != 0) return;
    const size_t end = at + name.size();
    if (!MakesNoPattern(variables_.Read(name, at, end))) return;
    findings_.Report(first ? Severity::kError : Severity::kWarning, at, end,
                     "the value of " + name +
                         " is not whole octets in hexadecimal: nothing can be expected of it");
  }

  const Circumstances circumstances_;
  Findings findings_{circumstances_.warns};
  KnownVariables variables_{findings_};
  std::array<std::optional<int32_t>, kReaders> kinds_;
  size_t reader_ = 0;
  size_t stop_ = 0;  // the line of @stop()
  bool unreachableTold_ = false;
  bool belowCommand_ = false;
};

Checker::Checker(const Circumstances& circumstances)
    : work_(std::make_unique<Work>(circumstances)) {}

Checker::~Checker() = default;

void Checker::Read(std::string_view line) { work_->Read(line); }

void Checker::Read(const Statement& statement) { work_->Read(statement); }

Value Checker::Follow(const Statement& statement) { return work_->Follow(statement); }

std::vector<Diagnostic> Checker::End() { return work_->End(); }

std::vector<Diagnostic> Check(const std::vector<std::string>& lines,
                              const Circumstances& circumstances) {
  Checker checker(circumstances);
  for (const std::string& line : lines) checker.Read(line);
  return checker.End();
}

}  // namespace host
