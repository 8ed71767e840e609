#pragma once

#include "src/readers/winscard_types.h"

// pcsc-lite's header declares the same names that this module exports, with other widths. Here they
// get the prefix PcscLite: they serve for their types and are never linked.
#define SCardEstablishContext PcscLiteEstablishContext
#define SCardReleaseContext PcscLiteReleaseContext
#define SCardFreeMemory PcscLiteFreeMemory
#define SCardReconnect PcscLiteReconnect
#define SCardDisconnect PcscLiteDisconnect
#define SCardBeginTransaction PcscLiteBeginTransaction
#define SCardEndTransaction PcscLiteEndTransaction
#define SCardTransmit PcscLiteTransmit
#define SCardControl PcscLiteControl
#define SCardGetAttrib PcscLiteGetAttrib
#define g_rgSCardT0Pci pcscLiteT0Pci
#define g_rgSCardT1Pci pcscLiteT1Pci
#define g_rgSCardRawPci pcscLiteRawPci
#include <reader.h>
#include <winscard.h>
#undef SCardEstablishContext
#undef SCardReleaseContext
#undef SCardFreeMemory
#undef SCardReconnect
#undef SCardDisconnect
#undef SCardBeginTransaction
#undef SCardEndTransaction
#undef SCardTransmit
#undef SCardControl
#undef SCardGetAttrib
#undef g_rgSCardT0Pci
#undef g_rgSCardT1Pci
#undef g_rgSCardRawPci

namespace pcsc {

// The numbers that differ from Windows'. pcsc-lite defines them as macros.
constexpr DWORD kLiteAutoAllocate = SCARD_AUTOALLOCATE;
constexpr DWORD kLiteProtocolRaw = SCARD_PROTOCOL_RAW;
#undef SCARD_AUTOALLOCATE
#undef SCARD_PROTOCOL_RAW
#undef SCARD_E_UNSUPPORTED_FEATURE

// The functions of pcsc-lite's client library that this module calls.
struct PcscLite {
  decltype(&PcscLiteEstablishContext) establishContext;
  decltype(&PcscLiteReleaseContext) releaseContext;
  decltype(&SCardListReaders) listReaders;
  decltype(&PcscLiteFreeMemory) freeMemory;
  decltype(&SCardGetStatusChange) getStatusChange;
  decltype(&SCardConnect) connect;
  decltype(&PcscLiteReconnect) reconnect;
  decltype(&PcscLiteDisconnect) disconnect;
  decltype(&PcscLiteBeginTransaction) beginTransaction;
  decltype(&PcscLiteEndTransaction) endTransaction;
  decltype(&SCardStatus) status;
  decltype(&PcscLiteTransmit) transmit;
  decltype(&PcscLiteControl) control;
  decltype(&PcscLiteGetAttrib) getAttrib;
};

// The client library, loaded by the first call and kept until the process ends. Null if it or one
// of its functions cannot be found.
//
// Every function is looked up in that library alone: an export of this module, however visible in
// the process, is never taken for pcsc-lite's own.
const PcscLite* LoadPcscLite();

}  // namespace pcsc
