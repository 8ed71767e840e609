#pragma once

#include "host/statement.h"

namespace host {

// Each of these throws Failure (kScriptFault) with the place in the line or in the value. With
// `hide` the message quotes nothing of a literal or a value.

// Checks literals before anything runs: an argument that its command cannot take, a command to the
// card that is not hexadecimal.
void CheckLiterals(const Statement& statement, bool hide);

// Checks with the variables' current values: an undefined variable, an argument that its command
// cannot take, a command that fails. The message has the cause and the library's own message.
// Stores nothing and asks nothing of the host.
void CheckOperands(const Statement& statement, bool hide);

// The same for an expression that will be sent: finds operands that are not hexadecimal.
void CheckCommand(const Statement& statement, bool hide);

}  // namespace host
