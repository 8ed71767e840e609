#pragma once

#include <cstdint>

// The types and numbers of PC/SC as 64-bit Windows has them, where pcsc-lite's are others.
namespace winscard {

using Context = uint64_t;
using Handle = uint64_t;

struct IoRequest {
  uint32_t protocol;
  uint32_t length;  // of this structure
};
static_assert(sizeof(IoRequest) == 8);

struct ReaderState {
  const char* reader;
  void* userData;
  uint32_t currentState;
  uint32_t eventState;
  uint32_t atrLength;
  uint8_t atr[36];
};
static_assert(sizeof(ReaderState) == 64);

// As the length of an area: the library allocates it, and SCardFreeMemory frees it.
constexpr uint32_t kAutoAllocate = 0xFFFFFFFF;

constexpr uint32_t kProtocolT0 = 1;
constexpr uint32_t kProtocolT1 = 2;
constexpr uint32_t kProtocolRaw = 0x00010000;

}  // namespace winscard
