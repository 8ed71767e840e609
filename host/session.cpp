#include "host/session.h"

#include <orvane.h>

#include <algorithm>
#include <map>

#include "host/expectation.h"
#include "host/failure.h"
#include "host/operands.h"
#include "host/text.h"

namespace host {
namespace {

constexpr std::string_view kHidden = "**";
const std::string kKeptBack = "\n  where they part is a secret, and shown with --show-secrets";

bool UsesCrypto(const Statement& statement) {
  return std::any_of(statement.invocations.begin(), statement.invocations.end(),
                     [](const Invocation& each) { return each.builtin->usesCrypto; });
}

class Stopwatch {
 public:
  Timing Read() const { return {begin_, start_, std::chrono::steady_clock::now() - start_}; }

 private:
  std::chrono::system_clock::time_point begin_ = std::chrono::system_clock::now();
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

// Runs the work and gives its result. Reports the result and the duration, also on failure.
template <typename Work, typename Tell>
auto Timed(Work work, Tell tell) {
  std::optional<decltype(work())> result;
  const Stopwatch watch;
  try {
    result = work();
  } catch (const Failure&) {
    tell(result, watch.Read());
    throw;
  }
  tell(result, watch.Read());
  return *result;
}

}  // namespace

bool Session::Hides(const Statement& statement, std::string_view value) const {
  return !settings_.showSecrets && (secrets_.Touches(statement) || Secrets::BeginsAsSecret(value));
}

void Session::LookAt(const Statement& statement, size_t assignmentsBefore) const {
  // Its variables' future values are not known, so the literals beside them may be secret.
  const bool reads = std::any_of(
      statement.words.begin() + static_cast<std::ptrdiff_t>(statement.value), statement.words.end(),
      [](const Word& w) { return w.kind == WordKind::kVariable; });
  CheckLiterals(statement, !settings_.showSecrets &&
                               (reads || secrets_.Touches(statement, assignmentsBefore)));
}

void Session::Echo(std::optional<size_t> line, std::string_view shown) {
  if (settings_.echoStatements)
    trace_.Statement(line, shown.substr(shown.find_first_not_of(" \t")));
}

bool Session::Run(const Statement& statement, std::optional<size_t> line) {
  if (statement.form == Form::kNothing) return true;
  if (statement.form == Form::kExpectation) {
    Expect(statement, line);
    return true;
  }
  response_.reset();
  if (statement.form == Form::kHeading) {
    trace_.Heading(HeadingText(statement));
    return true;
  }
  const bool hide = Hides(statement);
  if (UsesCrypto(statement)) trace_.Flush();
  CheckOperands(statement, hide);
  if (statement.Sends()) CheckCommand(statement, hide);
  const Result result = host::Run(statement);
  switch (result.code) {
    case KindAssignment:
      Assign(statement, line, result.text, hide);
      return true;
    case KindExpression:
      SendFrom(statement, line, result.text, hide);
      return true;
    case KindCompare:
      Compare(statement, line, result.text == "1", hide);
      return true;
  }
  if (!hide) return Act(statement, line, result, hide);
  try {
    return Act(statement, line, result, hide);
  } catch (const Failure& failure) {
    throw Failure(failure.Code(),
                  statement.TextOf(statement.words[0]) +
                      " failed; why is as secret as its argument, and shown with --show-secrets");
  }
}

bool Session::Act(const Statement& statement, std::optional<size_t> line, const Result& result,
                  bool hide) {
  if (result.code == KindReset || result.code == KindSetSlot) OpenDefault();
  Echo(line, hide ? MaskLiterals(statement, 0) : statement.text);
  trace_.Flush();
  switch (result.code) {
    case KindSetReader:
      readers_.Select(result.text);
      return true;
    case KindSetSlot:
      readers_.ChooseSlot(result.text);
      return true;
    case KindReset:
      ResetCard();
      return true;
    case KindOpenReader:
      Open(result.text, hide);
      return true;
    case KindStop:
      return false;
  }
  throw Failure(kScriptFault, "the library gave code " + std::to_string(result.code));
}

void Session::Assign(const Statement& statement, std::optional<size_t> line,
                     const std::string& value, bool hideStatement) {
  const bool hide = hideStatement || (!settings_.showSecrets && Secrets::BeginsAsSecret(value));
  secrets_.Follow(statement, value);
  Echo(line, hide ? MaskLiterals(statement, 0) : statement.text);
  const bool plain = statement.end == statement.value + 1 &&
                     statement.words[statement.value].kind == WordKind::kLiteral;
  if (!plain) trace_.Value(hide ? kHidden : value);
}

void Session::Show(const Statement& expression) {
  CheckOperands(expression, Hides(expression));
  const std::string value = Evaluate(expression.text);
  const bool hide = Hides(expression, value);
  Echo(std::nullopt, hide ? MaskLiterals(expression, 0) : expression.text);
  trace_.Value(hide ? kHidden : value);
}

std::string Session::ValueOf(const Statement& expression) const {
  CheckOperands(expression, Hides(expression));
  std::string value = Evaluate(expression.text);
  if (Hides(expression, value)) {
    throw Failure(kScriptFault, "the value is a secret, and shown with --show-secrets");
  }
  return value;
}

void Session::SendFrom(const Statement& statement, std::optional<size_t> line,
                       std::string_view digits, bool hideStatement) {
  OpenDefault();
  const CardCommand command = ReadCommand(digits, readers_.CurrentFraming());
  const bool hide = hideStatement || (!settings_.showSecrets && CarriesSecret(command));
  Echo(line, hide ? MaskLiterals(statement, 2 * command.dataBegin) : statement.text);
  response_ = Exchange(command, hide);
}

void Session::Expect(const Statement& expectation, std::optional<size_t> line) {
  if (!response_) throw NoCommandAbove();
  const std::string& text = expectation.text;
  const Expectation expected = ReadExpectation(text, *FindExpectation(text));
  bool hide = false;
  std::map<std::string, std::string> values;
  for (const std::string& name : VariablesOf(expected)) {
    const Statement operand = ReadStatement(name);
    CheckOperands(operand, false);
    values[name] = Evaluate(name);
    hide = hide || Hides(operand, values[name]);
  }
  const std::string parting = PartingFrom(expected, *response_, values);
  const std::string shown =
      hide ? MaskExpectation(expected) : text.substr(text.find_first_not_of(" \t"));
  Echo(line, shown);
  trace_.Judgement(parting.empty() ? "as expected" : "not as expected", parting.empty());
  if (!parting.empty()) {
    throw Failure(kExpectationFailed,
                  "not as expected: " + Printable(shown) + (hide ? kKeptBack : parting));
  }
  ++expectations_;
}

void Session::Send(std::string_view digits, std::string_view expected) {
  const CardCommand command = ReadCommand(digits, readers_.CurrentFraming());
  const Response response = Exchange(command, !settings_.showSecrets && CarriesSecret(command));
  trace_.Flush();
  if (expected.empty()) return;
  const std::string parting = PartingFrom(ReadExpectation(expected), response, {});
  if (parting.empty()) return;
  throw Failure(kExpectationFailed, "not as expected: " + std::string(expected) + parting);
}

Response Session::Exchange(const CardCommand& command, bool hide) {
  if (!readers_.IsOpen()) trace_.Flush();
  readers_.Check(command);
  trace_.Command(command, hide);
  trace_.Flush();
  for (ExchangeListener* listener : settings_.listeners) listener->Sending(command, hide);
  Response response = Timed([&] { return readers_.Send(command); },
                            [&](const std::optional<Response>& given, const Timing& timing) {
                              for (ExchangeListener* listener : settings_.listeners) {
                                listener->Exchanged({readers_.Number(), readers_.CurrentKind(),
                                                     command, hide, given, timing});
                              }
                            });
  ++commands_;
  SetVariable("%RESP", response.data);
  SetVariable("%SW", response.statusWord);
  secrets_.FollowAnswer();
  trace_.Response(response, NoteOn(response, command, readers_.CurrentKind()));
  return response;
}

void Session::Compare(const Statement& statement, std::optional<size_t> line, bool held,
                      bool hide) {
  const std::vector<Words> arguments = Arguments(statement, statement.invocations.back());
  const auto value = [&](size_t at) { return Evaluate(statement.Source(arguments[at])); };
  const std::string shown = hide ? MaskLiterals(statement, 0) : statement.text;
  const std::string left = value(0);
  const std::string right = value(1);
  const std::string expected = value(2);
  Echo(line, shown);
  const std::string_view shownLeft = hide ? kHidden : std::string_view(left);
  const std::string_view shownRight = hide ? kHidden : std::string_view(right);
  const bool equal = held == (expected == "1");
  trace_.Judgement(std::string(shownLeft) + (equal ? " = " : " is not ") + std::string(shownRight),
                   held);
  if (held) {
    ++expectations_;
    return;
  }
  throw Failure(kExpectationFailed,
                "not as expected: " + Printable(shown) + "\n  left   " + Printable(shownLeft) +
                    "\n  right  " + Printable(shownRight) +
                    (expected == "1" ? "\n  they should be equal" : "\n  they should differ"));
}

void Session::OpenDefault() {
  if (readers_.Used()) return;
  trace_.Flush();
  TellOpening();
  TellOpened(readers_.OpenDefault(), false);
}

void Session::Open(std::string_view address, bool hide) {
  TellOpening();
  TellOpened(readers_.Open(address), hide);
}

void Session::TellOpening() const {
  for (ExchangeListener* listener : settings_.listeners) listener->Opening();
}

void Session::TellOpened(const ReaderAddress& address, bool hide) {
  const bool simulated = readers_.Simulated();
  trace_.Reader(hide ? std::string(kHidden) : address.Shown(), simulated);
  for (ExchangeListener* listener : settings_.listeners) {
    listener->Opened(readers_.Number(), address, simulated, hide);
  }
}

void Session::ResetCard() {
  OpenDefault();
  trace_.Flush();
  const std::string atr = Timed([&] { return readers_.ResetCard(); },
                                [&](const std::optional<std::string>& given, const Timing& timing) {
                                  for (ExchangeListener* listener : settings_.listeners) {
                                    listener->CardReset(readers_.Number(), given, timing);
                                  }
                                });
  SetVariable("%ATR", atr);
  trace_.Atr(atr);
}

void Session::Summarise(bool done) { trace_.Summary(commands_, expectations_, done); }

}  // namespace host
