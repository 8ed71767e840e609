#pragma once

#include <cstdint>
#include <optional>

#include "host/check/findings.h"
#include "host/check/value.h"

namespace host {

// Reports the faults in the known part of a command to a reader of this kind (none: not known). The
// text's characters are digits and blanks.
void CheckCommandText(Findings& findings, const Statement& statement, const Value& text,
                      std::optional<int32_t> kind);

// The message without the lines that show a place and without the part that concerns a run.
std::string FirstLine(const Failure& failure);

}  // namespace host
