#pragma once

#include <cstddef>
#include <cstdint>

// PC/SC as 64-bit Windows lays it out, on every platform. The names are the interface's own. Other
// headers define some of them as macros, so include this one first.
namespace winscard {

using SCARDCONTEXT = std::uint64_t;
using SCARDHANDLE = std::uint64_t;
using DWORD = std::uint32_t;
using LONG = std::int32_t;

struct SCARD_IO_REQUEST {
  DWORD dwProtocol;
  DWORD cbPciLength;  // the size of this structure
};
static_assert(sizeof(SCARD_IO_REQUEST) == 8);

struct SCARD_READERSTATEA {
  const char* szReader;
  void* pvUserData;
  DWORD dwCurrentState;
  DWORD dwEventState;
  DWORD cbAtr;
  std::uint8_t rgbAtr[36];
};
static_assert(sizeof(SCARD_READERSTATEA) == 64 && offsetof(SCARD_READERSTATEA, rgbAtr) == 28);

constexpr DWORD SCARD_SCOPE_USER = 0;
// As the length of a buffer: the library allocates it, and SCardFreeMemory frees it.
constexpr DWORD SCARD_AUTOALLOCATE = 0xFFFFFFFF;
constexpr DWORD SCARD_SHARE_SHARED = 2;
constexpr DWORD SCARD_PROTOCOL_T0 = 1;
constexpr DWORD SCARD_PROTOCOL_T1 = 2;
constexpr DWORD SCARD_PROTOCOL_RAW = 0x00010000;
constexpr DWORD SCARD_LEAVE_CARD = 0;
constexpr DWORD SCARD_ATTR_ATR_STRING = 0x00090303;

// Bits of a reader's state.
constexpr DWORD SCARD_STATE_CHANGED = 0x02;
constexpr DWORD SCARD_STATE_UNKNOWN = 0x04;
constexpr DWORD SCARD_STATE_EMPTY = 0x10;
constexpr DWORD SCARD_STATE_PRESENT = 0x20;

constexpr LONG SCARD_S_SUCCESS = 0;
constexpr LONG ERROR_INVALID_HANDLE = 6;
constexpr LONG SCARD_E_INVALID_HANDLE = static_cast<LONG>(0x80100003);
constexpr LONG SCARD_E_INVALID_PARAMETER = static_cast<LONG>(0x80100004);
constexpr LONG SCARD_E_INSUFFICIENT_BUFFER = static_cast<LONG>(0x80100008);
constexpr LONG SCARD_E_UNKNOWN_READER = static_cast<LONG>(0x80100009);
constexpr LONG SCARD_E_TIMEOUT = static_cast<LONG>(0x8010000A);
constexpr LONG SCARD_E_PROTO_MISMATCH = static_cast<LONG>(0x8010000F);
constexpr LONG SCARD_E_INVALID_VALUE = static_cast<LONG>(0x80100011);
constexpr LONG SCARD_E_UNSUPPORTED_FEATURE = static_cast<LONG>(0x80100022);
constexpr LONG SCARD_E_NO_READERS_AVAILABLE = static_cast<LONG>(0x8010002E);
constexpr LONG SCARD_W_REMOVED_CARD = static_cast<LONG>(0x80100069);

consteval DWORD SCARD_CTL_CODE(DWORD function) { return 0x31U << 16 | function << 2; }

}  // namespace winscard
