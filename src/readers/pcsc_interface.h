#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/library.h"

namespace orvane {

// PC/SC as 64-bit Windows lays it out. The names are the interface's own.

using SCARDCONTEXT = std::uint64_t;
using SCARDHANDLE = std::int64_t;
using DWORD = std::uint32_t;
using LONG = std::int32_t;

struct SCARD_IO_REQUEST {
  DWORD dwProtocol;
  DWORD cbPciLength;
};

struct SCARD_READERSTATEA {
  const char* szReader;
  void* pvUserData;
  DWORD dwCurrentState;
  DWORD dwEventState;
  DWORD cbAtr;
  std::uint8_t rgbAtr[36];
};
static_assert(sizeof(SCARD_READERSTATEA) == 64);

constexpr DWORD SCARD_SCOPE_USER = 0;
// A list of groups: the empty name ends it.
constexpr char SCARD_DEFAULT_READERS[] = "SCard$DefaultReaders\0";
constexpr DWORD SCARD_AUTOALLOCATE = 0xFFFFFFFF;
constexpr DWORD SCARD_SHARE_SHARED = 2;
constexpr DWORD SCARD_PROTOCOL_T0 = 1;
constexpr DWORD SCARD_PROTOCOL_T1 = 2;
constexpr DWORD SCARD_LEAVE_CARD = 0;
constexpr DWORD SCARD_ATTR_ATR_STRING = 0x00090303;
constexpr DWORD SCARD_STATE_PRESENT = 0x20;
constexpr LONG SCARD_S_SUCCESS = 0;
constexpr LONG ERROR_INVALID_HANDLE = 6;
constexpr LONG SCARD_E_INVALID_HANDLE = static_cast<LONG>(0x80100003);
constexpr LONG SCARD_W_REMOVED_CARD = static_cast<LONG>(0x80100069);

consteval DWORD SCARD_CTL_CODE(DWORD code) { return 0x31U << 16 | code << 2; }

struct PcscEntryPoints {
  static constexpr char kFileName[] = "winscard.dll";
  static std::span<const platform::EntryPoint> EntryPoints();

  LONG(*SCardEstablishContext)
  (DWORD scope, const void* reserved1, const void* reserved2, SCARDCONTEXT* context) = nullptr;
  LONG (*SCardReleaseContext)(SCARDCONTEXT context) = nullptr;
  // With SCARD_AUTOALLOCATE as length, readers is where a pointer to the list goes.
  LONG(*SCardListReadersA)
  (SCARDCONTEXT context, const char* groups, char** readers, DWORD* length) = nullptr;
  LONG (*SCardFreeMemory)(SCARDCONTEXT context, const void* memory) = nullptr;
  LONG(*SCardConnectA)
  (SCARDCONTEXT context, const char* reader, DWORD shareMode, DWORD protocols, SCARDHANDLE* card,
   DWORD* protocol) = nullptr;
  LONG (*SCardDisconnect)(SCARDHANDLE card, DWORD disposition) = nullptr;
  LONG(*SCardTransmit)
  (SCARDHANDLE card, const SCARD_IO_REQUEST* sendHeader, const std::uint8_t* command,
   DWORD commandLength, SCARD_IO_REQUEST* receiveHeader, std::uint8_t* reply,
   DWORD* replyLength) = nullptr;
  LONG(*SCardGetAttrib)
  (SCARDHANDLE card, DWORD attribute, std::uint8_t* value, DWORD* length) = nullptr;
  LONG(*SCardControl)
  (SCARDHANDLE card, DWORD code, const void* in, DWORD inLength, void* out, DWORD outRoom,
   DWORD* outLength) = nullptr;
  LONG(*SCardGetStatusChangeA)
  (SCARDCONTEXT context, DWORD milliseconds, SCARD_READERSTATEA* states, DWORD count) = nullptr;
  const SCARD_IO_REQUEST* g_rgSCardT0Pci = nullptr;
  const SCARD_IO_REQUEST* g_rgSCardT1Pci = nullptr;

  // Bound, never called.
  void (*SCardReconnect)() = nullptr;
  void (*SCardBeginTransaction)() = nullptr;
  void (*SCardEndTransaction)() = nullptr;
  void (*SCardStatusA)() = nullptr;
  void (*SCardLocateCardsA)() = nullptr;
  void (*SCardListCardsA)() = nullptr;
  void (*SCardForgetCardTypeA)() = nullptr;
  const SCARD_IO_REQUEST* g_rgSCardRawPci = nullptr;
};

}  // namespace orvane
