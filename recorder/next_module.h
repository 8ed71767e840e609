#pragma once

#include <string>

namespace recorder {

// The library in whose place this module stands, and which it hands every call on to:
//  - the one that the environment's ORVANE_RECORD_NEXT names, and no other one;
//  - one of the same file name that the process has loaded besides;
//  - on Windows the system's own; elsewhere the next one in LD_LIBRARY_PATH, else the one in the
//    folder of liborvane, else the one in a folder above this module's.
// Null if there is none. It stays loaded.
void* LoadNextModule();

void* FindFunction(void* module, const char* name);

// A reader's name, which comes in the code page of the system, as UTF-8.
std::string ToUtf8(const char* name);

}  // namespace recorder
