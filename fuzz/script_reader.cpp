// The host's reader of scripts, which lets no statement through that the library would pass over:
// any input is a file. What it accepts must mean the same to the library, and to itself when it
// reads it again.
#include <iostream>
#include <sstream>

#include "commands/crypto_provider_table.h"
#include "engine/engine.h"
#include "fuzz/input.h"
#include "host/failure.h"
#include "host/script.h"

namespace {

using namespace orvane_fuzz;
using host::Form;
using host::Statement;
using host::WordKind;

std::size_t CountLines(std::string_view text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) +
         (text.empty() || text.back() == '\n' ? 0 : 1);
}

void ExpectPlace(const host::Failure& failure, std::size_t lines) {
  const std::string message = failure.what();
  constexpr std::string_view kName = "<stdin>:";
  Expect(failure.Code() == host::kScriptFault && message.starts_with(kName), message.c_str());
  const unsigned long line = std::strtoul(message.c_str() + kName.size(), nullptr, 10);
  Expect(line >= 1 && line <= lines, "a failure's line");
}

bool IsExpected(std::int32_t code, const Statement& statement) {
  switch (statement.form) {
    case Form::kNothing:
      return code == ScriptNothingToRun || code == KindAssignment;
    case Form::kHeading:
      return code == KindDollar;
    case Form::kAssignment:
      return code == KindAssignment || code == 1;
    case Form::kExpression:
      break;
  }
  const bool forHost = !statement.calls.empty() && statement.calls.back().forHost;
  return code == KindExpression || code == ScriptException || code == 1 ||
         (forHost && code >= KindSetReader && code <= KindOpenReader && code != KindDollar);
}

void ExpectSameToLibrary(orvane::ScriptEngine& engine, const Statement& statement) {
  char result[512];
  const std::int32_t code = orvane::RunStatement(engine, statement.text, result);
  Expect(IsExpected(code, statement), "what the library takes a statement for");
  Expect(engine.tokens.size() == statement.words.size(), "the number of words");
  for (std::size_t at = 0; at < engine.tokens.size(); ++at) {
    ExpectSame(statement.words[at].text, engine.tokens[at], "a word");
  }
}

void ExpectSameReadAgain(const Statement& statement) {
  std::string text;
  for (std::size_t at = 0; at < statement.words.size(); ++at) {
    text.append(" \t").append(statement.Source(at, at));
  }
  const Statement again = host::ReadStatement(text);
  Expect(again.form == statement.form && again.value == statement.value &&
             again.end == statement.end && again.calls.size() == statement.calls.size(),
         "a statement that is read again");
  for (std::size_t at = 0; at < again.words.size(); ++at) {
    ExpectSame(again.words[at].text, statement.words[at].text, "a word that is read again");
  }
}

// The statement as it is shown must not depend on what it hides.
void ExpectHidden(const Statement& statement) {
  std::string other = statement.text;
  for (std::size_t word = statement.value; word < statement.words.size(); ++word) {
    const auto& [kind, text, begin, end] = statement.words[word];
    if (kind != WordKind::kLiteral) continue;
    for (std::size_t at = begin; at < end; ++at) {
      if (other[at] != ' ' && other[at] != '\t') other[at] = '0';
    }
  }
  ExpectSame(host::MaskLiterals(statement, 0), host::MaskLiterals(host::ReadStatement(other), 0),
             "a masked statement");
}

void ExpectArguments(const Statement& statement) {
  for (const host::Call& call : statement.calls) {
    for (const std::string_view argument : host::Arguments(statement, call)) {
      Expect(!argument.empty(), "an argument");
    }
  }
}

void Check(const host::Script& script) {
  orvane::ScriptEngine engine;
  host::Secrets secrets;
  secrets.Learn(script.statements);
  for (const Statement& statement : script.statements) {
    ExpectSameToLibrary(engine, statement);
    if (statement.form == Form::kNothing) continue;
    ExpectSameReadAgain(statement);
    if (statement.form == Form::kHeading) continue;
    ExpectArguments(statement);
    ExpectHidden(statement);
    secrets.Touches(statement);
    if (statement.form == Form::kAssignment) secrets.Follow(statement);
  }
}

}  // namespace

// No provider: its commands fail.
const CryptoProvider& orvane::BoundCryptoProvider() {
  static constexpr CryptoProvider kNone{};
  return kNone;
}

// Scripts are read here, not run.
bool host::Session::Run(const Statement&, std::optional<std::size_t>) { return false; }
void host::Session::Summarise() {}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  const std::size_t lines = CountLines(text);
  std::istringstream file(text);
  std::streambuf* const standardInput = std::cin.rdbuf(file.rdbuf());
  std::cin.clear();
  try {
    const host::Script script = host::ReadScript("-");
    Expect(script.statements.size() == lines, "a statement a line");
    Check(script);
  } catch (const host::Failure& failure) {
    ExpectPlace(failure, lines);
  }
  std::cin.rdbuf(standardInput);
  return 0;
}
