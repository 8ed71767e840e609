#pragma once

#include <string>
#include <vector>

#include "host/check/findings.h"
#include "host/check/known_variables.h"
#include "host/check/value.h"
#include "host/statement.h"

namespace host {

// What operands must be, and their common name, as in "the key of @des".
struct Wanted {
  const Parameter& parameter;
  std::string name;
};

// Follows the operands of one statement and reports their faults.
class OperandCheck {
 public:
  // Without variables, the value of every variable is unknown.
  OperandCheck(const Statement& statement, Findings& findings, KnownVariables* variables)
      : statement_(statement), findings_(findings), variables_(variables) {}

  struct Result {
    Value value;
    bool sound;  // no fault of it was reported
  };

  // Follows everything that the statement evaluates.
  Result Follow(const Wanted* wanted);
  // The arguments of the statement's built-in for the host.
  std::vector<Value> FollowArguments();

 private:
  Result Operands(const Wanted* wanted);
  Value Operand();
  Value Invoke();
  std::vector<Value> Arguments(const Builtin& builtin, bool& sound);
  void CheckText(const Word& word, const Wanted& wanted);
  bool CheckCharacters(Words words, const Value& value, const Wanted& wanted);
  bool CheckTogether(const Builtin& builtin, Words words, const std::vector<Value>& values);

  const Statement& statement_;
  Findings& findings_;
  KnownVariables* variables_;
  size_t at_ = 0;  // the next word
};

// The severity of a value's faults: certain, or a guess about the crypto module.
Severity SeverityFor(const Value& value);

}  // namespace host
