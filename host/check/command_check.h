#pragma once

#include <cstdint>
#include <optional>

#include "host/check/findings.h"
#include "host/check/value.h"

namespace host {

// Reports what is wrong with the text of a command to a reader of this kind (none: not known), as
// far as it is known. Its characters are digits and blanks.
void CheckCommandText(Findings& findings, const Statement& statement, const Value& text,
                      std::optional<int32_t> kind);

// The message without the lines that show a place, and without what only a run can say.
std::string FirstLine(const Failure& failure);

}  // namespace host
