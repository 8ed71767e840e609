#pragma once

#include <string>

namespace recorder {

// The library that this module replaces and passes every call on to, the first that is found of:
//  - the one that the environment's ORVANE_RECORD_NEXT names; if it is set, no other one;
//  - another loaded library with the same file name;
//  - on Windows the system's own; elsewhere the one in a folder of LD_LIBRARY_PATH, in liborvane's
//    folder, or in one of the two folders above this module's.
// Null if there is none. It stays loaded.
void* LoadNextModule();

void* FindFunction(void* module, const char* name);

// A reader's name as UTF-8. It comes in the system's code page.
std::string ToUtf8(const char* name);

}  // namespace recorder
