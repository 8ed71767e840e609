#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/engine.h"
#include "host/exchange_listener.h"
#include "host/readers.h"
#include "host/secrets.h"
#include "host/statement.h"
#include "host/trace.h"

namespace host {

// Runs statements: each one in the library's script engine, then the card work that it asks for.
// Stores the outcome as %RESP, %SW and %ATR. Every fault is thrown as Failure.
class Session {
 public:
  struct Settings {
    bool showSecrets = false;
    bool echoStatements = true;
    std::vector<ExchangeListener*> listeners = {};  // they must outlive the session
  };

  Session(Readers& readers, Secrets& secrets, Trace& trace, Settings settings)
      : readers_(readers), secrets_(secrets), trace_(trace), settings_(std::move(settings)) {}

  // False if the statement ended the script.
  bool Run(const Statement& statement, std::optional<size_t> line);

  // Checks a statement that will run later, as far as its literals allow; throws if it must be
  // refused. assignmentsBefore is the number of assignments between the script's beginning and it.
  void LookAt(const Statement& statement, size_t assignmentsBefore) const;

  // Shows the value of an expression and sends nothing.
  void Show(const Statement& expression);
  // Throws Failure (kScriptFault), also if the value must be hidden.
  std::string ValueOf(const Statement& expression) const;

  // Adds a listener, which must outlive the session.
  void Listen(ExchangeListener* listener) { settings_.listeners.push_back(listener); }
  // Sets whether statements are shown before their outcome. Gives the earlier setting.
  bool EchoStatements(bool echo) { return std::exchange(settings_.echoStatements, echo); }

  void Open(std::string_view address, bool hide = false);
  void ResetCard();
  // Sends a command that comes from no statement. Throws Failure (kExpectationFailed) if the
  // response does not match `expected`, a pattern; an empty one accepts any response.
  void Send(std::string_view digits, std::string_view expected = "");

  // Looks ahead at a statement that will run, after those that it has looked at. True if the value
  // of an existing variable turns out to be secret.
  bool Learn(const Statement& statement) { return secrets_.Learn(statement); }
  // Nothing more of what it has looked at will run.
  void StartOver() { secrets_.StartOver(); }

  // Leaves out a statement that it has looked at.
  void PassOver(const Statement& statement) {
    if (statement.form == Form::kAssignment) secrets_.PassOver();
  }

  // True if the trace must not show this statement as it stands, or this value of it.
  bool Hides(const Statement& statement, std::string_view value = "") const;

  void Summarise(bool done);

 private:
  void Expect(const Statement& expectation, std::optional<size_t> line);
  bool Act(const Statement& statement, std::optional<size_t> line, const Result& result, bool hide);
  void Echo(std::optional<size_t> line, std::string_view shown);
  void Assign(const Statement& statement, std::optional<size_t> line, const std::string& value,
              bool hideStatement);
  void SendFrom(const Statement& statement, std::optional<size_t> line, std::string_view digits,
                bool hideStatement);
  Response Exchange(const CardCommand& command, bool hide);
  void TellOpening() const;
  void TellOpened(const ReaderAddress& address, bool hide);
  void Compare(const Statement& statement, std::optional<size_t> line, bool held, bool hide);
  void OpenDefault();

  Readers& readers_;
  Secrets& secrets_;
  Trace& trace_;
  Settings settings_;
  std::optional<Response> response_;  // to the command directly above
  size_t commands_ = 0;
  size_t expectations_ = 0;
};

}  // namespace host
