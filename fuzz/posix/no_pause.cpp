// Drivers pause between steps of a reader; no played reader needs that.
#include <time.h>

extern "C" int nanosleep(const timespec*, timespec*) { return 0; }
