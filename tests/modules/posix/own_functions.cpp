// A host that has functions of the library's names for itself.
#include <cstdint>

#define HOST_FUNCTION extern "C" __attribute__((visibility("default")))

HOST_FUNCTION void HexToAscii(const unsigned char*, char*, std::int32_t) {}

HOST_FUNCTION std::int32_t HexToInt(const unsigned char*, std::int32_t*, std::int32_t) { return 0; }
