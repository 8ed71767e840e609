#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "host/statement.h"

namespace host {

struct Result {
  int32_t code;  // a StatementKind
  std::string text;
};

// True if a call fails; `message` is then the library's. The variables of its operands exist.
// Stores nothing and asks nothing of the host.
bool Fails(std::string_view call, std::string& message);

// Runs a statement whose operands have been checked. The text of an expression or of an assignment
// to a %NAME is complete, beyond the library's 511 characters. Throws Failure (kScriptFault), also
// for a text that is too long: above 64 KiB for an expression, above 511 for a command for the
// host.
Result Run(const Statement& statement);

// The value of operands with its letters' case, cut to kLongestValue characters. The operands have
// been checked.
std::string Evaluate(std::string_view operands);

inline constexpr size_t kLongestValue = 65536;

// Stores a value. The name includes its %.
void SetVariable(const std::string& name, const std::string& value);

}  // namespace host
