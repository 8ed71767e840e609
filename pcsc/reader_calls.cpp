// The exports that use the service and its readers.

#include <algorithm>
#include <array>
#include <cstring>

#include "cards.h"
#include "translation.h"

namespace pcsc {
namespace {

void Take(const SCARD_READERSTATE& from, winscard::SCARD_READERSTATEA& to) {
  to.dwEventState = static_cast<uint32_t>(from.dwEventState);
  to.cbAtr = static_cast<uint32_t>(std::min<DWORD>(from.cbAtr, MAX_ATR_SIZE));
  std::memcpy(to.rgbAtr, from.rgbAtr, to.cbAtr);
}

}  // namespace

extern "C" {

WINSCARD_API int32_t SCardEstablishContext(uint32_t scope, const void* reserved1,
                                           const void* reserved2, winscard::SCARDCONTEXT* context) {
  return WithPcscLite([&](const PcscLite& lite) {
    SCARDCONTEXT established = 0;
    const LONG code =
        lite.establishContext(scope, reserved1, reserved2, context ? &established : nullptr);
    if (code == SCARD_S_SUCCESS && context)
      *context = static_cast<winscard::SCARDCONTEXT>(established);
    return code;
  });
}

WINSCARD_API int32_t SCardReleaseContext(winscard::SCARDCONTEXT context) {
  return WithPcscLite([&](const PcscLite& lite) {
    const auto released = static_cast<SCARDCONTEXT>(context);
    const LONG code = lite.releaseContext(released);
    if (code == SCARD_S_SUCCESS) RemoveCardsOf(released);
    return code;
  });
}

// The service has only one group; pcsc-lite ignores the group's name.
WINSCARD_API int32_t SCardListReadersA(winscard::SCARDCONTEXT context, const char* groups,
                                       char* readers, uint32_t* length) {
  return WithPcscLite([&](const PcscLite& lite) {
    return lite.listReaders(static_cast<SCARDCONTEXT>(context), groups, readers,
                            WideLength(length));
  });
}

WINSCARD_API int32_t SCardFreeMemory(winscard::SCARDCONTEXT context, const void* memory) {
  return WithPcscLite([&](const PcscLite& lite) {
    return lite.freeMemory(static_cast<SCARDCONTEXT>(context), memory);
  });
}

WINSCARD_API int32_t SCardGetStatusChangeA(winscard::SCARDCONTEXT context, uint32_t milliseconds,
                                           winscard::SCARD_READERSTATEA* states, uint32_t count) {
  return WithPcscLite([&](const PcscLite& lite) {
    std::array<SCARD_READERSTATE, PCSCLITE_MAX_READERS_CONTEXTS> wide{};
    if (count > wide.size() || (states == nullptr && count > 0)) return SCARD_E_INVALID_PARAMETER;
    for (uint32_t i = 0; i < count; i++) {
      wide[i].szReader = states[i].szReader;
      wide[i].dwCurrentState = states[i].dwCurrentState;
    }
    const LONG code =
        lite.getStatusChange(static_cast<SCARDCONTEXT>(context), milliseconds, wide.data(), count);
    for (uint32_t i = 0; i < count; i++) Take(wide[i], states[i]);
    return code;
  });
}

// Windows keeps a list of card types by name. pcsc-lite has none.
WINSCARD_API int32_t SCardLocateCardsA(winscard::SCARDCONTEXT, const char*,
                                       winscard::SCARD_READERSTATEA*, uint32_t) {
  return winscard::SCARD_E_UNSUPPORTED_FEATURE;
}

WINSCARD_API int32_t SCardListCardsA(winscard::SCARDCONTEXT, const uint8_t*, const void*, uint32_t,
                                     char*, uint32_t*) {
  return winscard::SCARD_E_UNSUPPORTED_FEATURE;
}

WINSCARD_API int32_t SCardForgetCardTypeA(winscard::SCARDCONTEXT, const char*) {
  return winscard::SCARD_E_UNSUPPORTED_FEATURE;
}

}  // extern "C"

}  // namespace pcsc
