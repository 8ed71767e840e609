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

// True if a call fails, with the message that it leaves. Its operands are known to be defined.
// Nothing is stored or asked of the host.
bool Fails(std::string_view call, std::string& message);

// Runs a statement whose operands are known to be sound. The text of an expression and of an
// assignment to a %NAME is whole, though the library hands over 511 characters at most. Throws
// Failure (kScriptFault) also if the text is too long: that of an expression above 64 KiB, of a
// command for the host above 511.
Result Run(const Statement& statement);

// The value of operands in their own case, at most so many characters of it. The operands are known
// to be sound.
std::string Evaluate(std::string_view operands);

inline constexpr size_t kLongestValue = 65536;

// Stores a value; name begins with the % of scripts.
void SetVariable(const std::string& name, const std::string& value);

}  // namespace host
