#include "fuzz/character_set.h"

bool orvane_fuzz::UseCharacterSet(const char*) { return false; }
