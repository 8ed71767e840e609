#pragma once

#include "host/statement.h"

namespace host {

// Each of these throws Failure (kScriptFault) with the place in the line or in the value. With hide
// nothing of a literal or a value is quoted.

// What the literals alone tell, before anything runs: an argument that its command can't take, a
// command to the card that is not hexadecimal.
void CheckLiterals(const Statement& statement, bool hide);

// With the values that variables have now: an undefined variable, an argument that its command
// can't take, a command that fails. The message of the library stands beside the cause. Nothing is
// stored or asked of the host.
void CheckOperands(const Statement& statement, bool hide);

// The same for the text of an expression that is to be sent: operands that are not hexadecimal.
void CheckCommand(const Statement& statement, bool hide);

}  // namespace host
