// The exports that use a card.
//
// On Windows the handle of a removed card gives SCARD_W_REMOVED_CARD until it is reconnected or
// disconnected, and a program may drop it and connect again, as often as cards come and go.
// pcsc-lite counts a dropped handle as open and refuses the 201st. So the first call that learns of
// the removal gives pcsc-lite's handle back. From then on the caller's number stands for a removed
// card.

#include <algorithm>
#include <memory>

#include "cards.h"
#include "translation.h"

namespace pcsc {
namespace {

// Connects a card that has no handle. Windows has one code for connecting to an empty reader and
// for using a removed card; pcsc-lite has two.
LONG Connect(const PcscLite& lite, Card& card, uint32_t shareMode, uint32_t protocols,
             SCARDHANDLE& handle, DWORD& active) {
  const LONG code = lite.connect(card.context, card.reader.c_str(), shareMode,
                                 ToLiteProtocols(protocols), &handle, &active);
  if (code == SCARD_S_SUCCESS) card.handle = handle;
  return code == SCARD_E_NO_SMARTCARD ? SCARD_W_REMOVED_CARD : code;
}

// Runs a call on the pcsc-lite handle that belongs to a number.
template <typename Call>
int32_t WithCard(winscard::SCARDHANDLE number, Call call) {
  return WithPcscLite([&](const PcscLite& lite) {
    const std::shared_ptr<Card> card = FindCard(number);
    if (card == nullptr) return SCARD_E_INVALID_HANDLE;
    SCARDHANDLE handle = card->handle;
    if (handle == 0) return SCARD_W_REMOVED_CARD;
    const LONG code = call(lite, handle);
    if (code == SCARD_W_REMOVED_CARD && card->handle.compare_exchange_strong(handle, 0)) {
      lite.disconnect(handle, SCARD_LEAVE_CARD);
    }
    return code;
  });
}

}  // namespace

extern "C" {

// A caller may pass a header of its own, so its fields count, not its address.
extern WINSCARD_API const winscard::SCARD_IO_REQUEST g_rgSCardT0Pci{
    SCARD_PROTOCOL_T0, sizeof(winscard::SCARD_IO_REQUEST)};
extern WINSCARD_API const winscard::SCARD_IO_REQUEST g_rgSCardT1Pci{
    SCARD_PROTOCOL_T1, sizeof(winscard::SCARD_IO_REQUEST)};
extern WINSCARD_API const winscard::SCARD_IO_REQUEST g_rgSCardRawPci{
    winscard::SCARD_PROTOCOL_RAW, sizeof(winscard::SCARD_IO_REQUEST)};

WINSCARD_API int32_t SCardConnectA(winscard::SCARDCONTEXT context, const char* reader,
                                   uint32_t shareMode, uint32_t protocols,
                                   winscard::SCARDHANDLE* number, uint32_t* activeProtocol) {
  return WithPcscLite([&](const PcscLite& lite) {
    if (reader == nullptr || number == nullptr || activeProtocol == nullptr) {
      return SCARD_E_INVALID_PARAMETER;
    }
    const auto card = std::make_shared<Card>(static_cast<SCARDCONTEXT>(context), reader);
    const winscard::SCARDHANDLE added = AddCard(card);
    DWORD active = 0;
    SCARDHANDLE handle = 0;
    const LONG code = Connect(lite, *card, shareMode, protocols, handle, active);
    if (code == SCARD_S_SUCCESS) {
      *number = added;
      *activeProtocol = ToWindowsProtocol(active);
    } else {
      RemoveCard(added);
    }
    return code;
  });
}

WINSCARD_API int32_t SCardReconnect(winscard::SCARDHANDLE number, uint32_t shareMode,
                                    uint32_t protocols, uint32_t initialization,
                                    uint32_t* activeProtocol) {
  return WithPcscLite([&](const PcscLite& lite) {
    const std::shared_ptr<Card> card = FindCard(number);
    if (card == nullptr) return SCARD_E_INVALID_HANDLE;
    if (activeProtocol == nullptr) return SCARD_E_INVALID_PARAMETER;
    const std::lock_guard lock(card->connecting);
    if (FindCard(number) != card) return SCARD_E_INVALID_HANDLE;  // disconnected meanwhile
    DWORD active = 0;
    LONG code = SCARD_S_SUCCESS;
    SCARDHANDLE handle = card->handle;
    if (handle == 0) code = Connect(lite, *card, shareMode, protocols, handle, active);
    if (code == SCARD_S_SUCCESS) {
      code = lite.reconnect(handle, shareMode, ToLiteProtocols(protocols), initialization, &active);
    }
    if (code == SCARD_S_SUCCESS) *activeProtocol = ToWindowsProtocol(active);
    return code == SCARD_E_NO_SMARTCARD ? SCARD_W_REMOVED_CARD : code;
  });
}

WINSCARD_API int32_t SCardDisconnect(winscard::SCARDHANDLE number, uint32_t disposition) {
  return WithPcscLite([&](const PcscLite& lite) {
    const std::shared_ptr<Card> card = FindCard(number);
    if (card == nullptr) return SCARD_E_INVALID_HANDLE;
    const std::lock_guard lock(card->connecting);
    const SCARDHANDLE handle = card->handle;
    const LONG code = handle == 0 ? SCARD_S_SUCCESS : lite.disconnect(handle, disposition);
    // After any other failure the connection is gone too: callers do not disconnect twice.
    if (code != SCARD_E_INVALID_VALUE) RemoveCard(number);
    return code;
  });
}

WINSCARD_API int32_t SCardBeginTransaction(winscard::SCARDHANDLE number) {
  return WithCard(number, [](const PcscLite& lite, SCARDHANDLE handle) {
    return lite.beginTransaction(handle);
  });
}

WINSCARD_API int32_t SCardEndTransaction(winscard::SCARDHANDLE number, uint32_t disposition) {
  return WithCard(number, [&](const PcscLite& lite, SCARDHANDLE handle) {
    return lite.endTransaction(handle, disposition);
  });
}

WINSCARD_API int32_t SCardStatusA(winscard::SCARDHANDLE number, char* readerName,
                                  uint32_t* nameLength, uint32_t* state, uint32_t* protocol,
                                  uint8_t* atr, uint32_t* atrLength) {
  return WithCard(number, [&](const PcscLite& lite, SCARDHANDLE handle) {
    DWORD wideState = 0;
    DWORD wideProtocol = 0;
    const LONG code = lite.status(handle, readerName, WideLength(nameLength), &wideState,
                                  &wideProtocol, atr, WideLength(atrLength));
    if (state != nullptr) *state = ToWindowsCardState(wideState);
    if (protocol != nullptr) *protocol = ToWindowsProtocol(wideProtocol);
    return code;
  });
}

WINSCARD_API int32_t SCardTransmit(winscard::SCARDHANDLE number,
                                   const winscard::SCARD_IO_REQUEST* sendHeader,
                                   const uint8_t* command, uint32_t commandLength,
                                   winscard::SCARD_IO_REQUEST* receiveHeader, uint8_t* response,
                                   uint32_t* responseLength) {
  return WithCard(number, [&](const PcscLite& lite, SCARDHANDLE handle) {
    if (sendHeader == nullptr) return SCARD_E_INVALID_PARAMETER;
    const SCARD_IO_REQUEST sent{ToLiteProtocols(sendHeader->dwProtocol), sizeof(SCARD_IO_REQUEST)};
    SCARD_IO_REQUEST received = sent;
    const LONG code = lite.transmit(handle, &sent, command, commandLength, &received, response,
                                    WideLength(responseLength));
    if (receiveHeader != nullptr)
      receiveHeader->dwProtocol = ToWindowsProtocol(received.dwProtocol);
    return code;
  });
}

// pcsc-lite runs a control code also after the card was removed, so this asks for the card first.
WINSCARD_API int32_t SCardControl(winscard::SCARDHANDLE number, uint32_t controlCode,
                                  const void* in, uint32_t inLength, void* out, uint32_t outLength,
                                  uint32_t* returned) {
  return WithCard(number, [&](const PcscLite& lite, SCARDHANDLE handle) {
    const LONG code = lite.status(handle, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    if (code == SCARD_W_REMOVED_CARD) return code;
    return lite.control(handle, ToLiteControlCode(controlCode), in, inLength, out,
                        std::min<DWORD>(outLength, MAX_BUFFER_SIZE_EXTENDED), WideNumber(returned));
  });
}

// Not every driver gives the ATR, but the service always has it.
WINSCARD_API int32_t SCardGetAttrib(winscard::SCARDHANDLE number, uint32_t attribute,
                                    uint8_t* value, uint32_t* length) {
  return WithCard(number, [&](const PcscLite& lite, SCARDHANDLE handle) {
    if (attribute == SCARD_ATTR_ATR_STRING) {
      return lite.status(handle, nullptr, nullptr, nullptr, nullptr, value, WideLength(length));
    }
    return lite.getAttrib(handle, attribute, value, WideLength(length, MAX_BUFFER_SIZE));
  });
}

}  // extern "C"

}  // namespace pcsc
