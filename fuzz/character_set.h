#pragma once

namespace orvane_fuzz {

// Makes a set, under its name for iconv, that of the environment's locale; the empty name is the C
// locale's. False where the system has no such choice: the set stays as it is.
bool UseCharacterSet(const char* name);

}  // namespace orvane_fuzz
