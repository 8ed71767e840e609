#pragma once

#include <string>
#include <vector>

#include "host/check/findings.h"
#include "host/check/known_variables.h"
#include "host/check/value.h"
#include "host/statement.h"

namespace host {

// What operands have to be, and what they are called together, as in "the key of @des".
struct Wanted {
  const Parameter& parameter;
  std::string name;
};

// Follows the operands of one statement, and reports what is wrong with them.
class OperandCheck {
 public:
  // Without variables nothing is known of them.
  OperandCheck(const Statement& statement, Findings& findings, KnownVariables* variables)
      : statement_(statement), findings_(findings), variables_(variables) {}

  struct Result {
    Value value;
    bool sound;  // nothing has been reported of it
  };

  // All that the statement evaluates.
  Result Follow(const Wanted* wanted);
  // The arguments of the built-in for the host that the statement is.
  std::vector<Value> FollowArguments();

 private:
  Result Operands(const Wanted* wanted);
  Value Operand();
  Value Invoke();
  std::vector<Value> Arguments(const Builtin& builtin, bool& sound);
  bool CheckCharacters(Words words, const Value& value, const Wanted& wanted);
  bool CheckTogether(const Builtin& builtin, Words words, const std::vector<Value>& values);

  const Statement& statement_;
  Findings& findings_;
  KnownVariables* variables_;
  size_t at_ = 0;  // the word that comes next
};

// Of a value's faults: sure, or a guess about the crypto module.
Severity SeverityFor(const Value& value);

}  // namespace host
