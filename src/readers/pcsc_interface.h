#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/library.h"
#include "readers/winscard_types.h"

namespace orvane {

using namespace winscard;

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
