#pragma once

// The types of the PC/SC interface as 64-bit Windows lays them out, on every platform.

#include <cstddef>
#include <cstdint>

namespace winscard {

using Code = int32_t;
using Dword = uint32_t;
using Context = uint64_t;
using Handle = uint64_t;

struct IoRequest {
  Dword protocol;
  Dword length;
};

struct ReaderState {
  const char* reader;
  void* userData;
  Dword currentState;
  Dword eventState;
  Dword atrLength;
  uint8_t atr[36];
};
static_assert(sizeof(IoRequest) == 8 && sizeof(ReaderState) == 64);
static_assert(offsetof(ReaderState, eventState) == 20 && offsetof(ReaderState, atr) == 28);

enum : uint32_t {
  kSuccess = 0,
  kInvalidHandle = 6,
  kInvalidParameter = 0x80100004,
  kInsufficientBuffer = 0x80100008,
  kUnknownReader = 0x80100009,
  kTimeout = 0x8010000A,
  kProtocolMismatch = 0x8010000F,
  kUnsupportedFeature = 0x80100022,
  kNoReadersAvailable = 0x8010002E,
  kRemovedCard = 0x80100069,
};

enum : Dword {
  kAutoAllocate = 0xFFFFFFFF,  // as length: the library allocates
  kProtocolT0 = 1,
  kProtocolT1 = 2,
  kProtocolRaw = 4,
  kLeaveCard = 0,
  kAttributeAtr = 0x00090303,
  kControlAtr = 0x00312EE0,
  kControlExchange = 0x00312EE4,
};

// Bits of a reader's state; its high half counts the card's movements.
enum : Dword {
  kStateChanged = 0x02,
  kStateUnknown = 0x04,
  kStateEmpty = 0x10,
  kStatePresent = 0x20,
};

// What SCardStatusA says of the card.
enum : Dword { kCardSpecific = 6 };

}  // namespace winscard
