#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/statement.h"

namespace host {

struct Result {
  int32_t code;  // a StatementKind
  std::string text;
};

// Throws Failure (kScriptFault) if the statement names an undefined variable or one of its commands
// fails. Nothing is stored or asked of the host.
void CheckOperands(const Statement& statement);

// Checks and runs a statement. Throws Failure (kScriptFault) also if its text is too long to be
// handed over.
Result Run(const Statement& statement);

// The value of operands in their own case, at most its first 511 bytes. The operands are known to
// be sound.
std::string Evaluate(std::string_view operands);

// Stores a value; name begins with the % of scripts.
void SetVariable(const std::string& name, const std::string& value);

}  // namespace host
