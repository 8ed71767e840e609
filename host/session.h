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

// Carries out statements: runs each in the library's script engine, does the card work it asks for,
// and stores the outcome as %RESP, %SW and %ATR. Everything that goes wrong is thrown as Failure.
class Session {
 public:
  struct Settings {
    bool showSecrets = false;
    bool echoStatements = true;
    std::vector<ExchangeListener*> listeners = {};  // they outlive the session
  };

  Session(Readers& readers, Secrets& secrets, Trace& trace, Settings settings)
      : readers_(readers), secrets_(secrets), trace_(trace), settings_(std::move(settings)) {}

  // False if the statement was the script's end.
  bool Run(const Statement& statement, std::optional<size_t> line);

  // Refuses a statement of a script that is to be run, as far as what it spells out tells. So many
  // assignments stand before it.
  void LookAt(const Statement& statement, size_t assignmentsBefore) const;

  // Shows the value of an expression and sends nothing.
  void Show(const Statement& expression);
  // Throws Failure (kScriptFault) also where the value is hidden.
  std::string ValueOf(const Statement& expression) const;

  // Tells one more listener, which outlives the session.
  void Listen(ExchangeListener* listener) { settings_.listeners.push_back(listener); }
  // Whether statements are shown before their outcome. Gives what it was before.
  bool EchoStatements(bool echo) { return std::exchange(settings_.echoStatements, echo); }

  void Open(std::string_view address, bool hide = false);
  void ResetCard();
  // Sends a command that no statement gave. Throws Failure (kExpectationFailed) unless the
  // response's status word fits the pattern, if there is one.
  void Send(std::string_view digits, std::string_view expected = "");

  // Looks ahead at a statement that is to be run, behind those that it has looked at already. True
  // if what stands in a variable turns out to be secret.
  bool Learn(const Statement& statement) { return secrets_.Learn(statement); }
  // Nothing more of what it has looked at is going to be run.
  void StartOver() { secrets_.StartOver(); }

  // Leaves out a statement that it has looked at.
  void PassOver(const Statement& statement) {
    if (statement.form == Form::kAssignment) secrets_.PassOver();
  }

  // True if the trace may not show this statement as it stands, or this value of it.
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
  std::optional<Response> response_;  // to the command that stands directly above
  size_t commands_ = 0;
  size_t expectations_ = 0;
};

}  // namespace host
