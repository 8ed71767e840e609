// The exports that speak to the service and its readers.

#include <algorithm>
#include <array>
#include <cstring>

#include "cards.h"
#include "translation.h"

namespace winscard {
namespace {

// pcsc-lite gives this name to the number of SCARD_E_UNEXPECTED.
constexpr auto kUnsupportedFeature = static_cast<int32_t>(0x80100022);

void Take(const SCARD_READERSTATE& from, ReaderState& to) {
  to.eventState = static_cast<uint32_t>(from.dwEventState);
  to.atrLength = static_cast<uint32_t>(std::min<DWORD>(from.cbAtr, MAX_ATR_SIZE));
  std::memcpy(to.atr, from.rgbAtr, to.atrLength);
}

}  // namespace

extern "C" {

WINSCARD_API int32_t SCardEstablishContext(uint32_t scope, const void* reserved1,
                                           const void* reserved2, Context* context) {
  return WithPcscLite([&](const PcscLite& lite) {
    SCARDCONTEXT established = 0;
    const LONG code =
        lite.establishContext(scope, reserved1, reserved2, context ? &established : nullptr);
    if (code == SCARD_S_SUCCESS && context) *context = static_cast<Context>(established);
    return code;
  });
}

WINSCARD_API int32_t SCardReleaseContext(Context context) {
  return WithPcscLite([&](const PcscLite& lite) {
    const auto released = static_cast<SCARDCONTEXT>(context);
    const LONG code = lite.releaseContext(released);
    if (code == SCARD_S_SUCCESS) RemoveCardsOf(released);
    return code;
  });
}

// The service has a single group, so pcsc-lite passes over the name of the group.
WINSCARD_API int32_t SCardListReadersA(Context context, const char* groups, char* readers,
                                       uint32_t* length) {
  return WithPcscLite([&](const PcscLite& lite) {
    return lite.listReaders(static_cast<SCARDCONTEXT>(context), groups, readers,
                            WideLength(length));
  });
}

WINSCARD_API int32_t SCardFreeMemory(Context context, const void* memory) {
  return WithPcscLite([&](const PcscLite& lite) {
    return lite.freeMemory(static_cast<SCARDCONTEXT>(context), memory);
  });
}

WINSCARD_API int32_t SCardGetStatusChangeA(Context context, uint32_t milliseconds,
                                           ReaderState* states, uint32_t count) {
  return WithPcscLite([&](const PcscLite& lite) {
    std::array<SCARD_READERSTATE, PCSCLITE_MAX_READERS_CONTEXTS> wide{};
    if (count > wide.size() || (states == nullptr && count > 0)) return SCARD_E_INVALID_PARAMETER;
    for (uint32_t i = 0; i < count; i++) {
      wide[i].szReader = states[i].reader;
      wide[i].dwCurrentState = states[i].currentState;
    }
    const LONG code =
        lite.getStatusChange(static_cast<SCARDCONTEXT>(context), milliseconds, wide.data(), count);
    for (uint32_t i = 0; i < count; i++) Take(wide[i], states[i]);
    return code;
  });
}

// Windows keeps a list of card types by name. There is nothing of the kind here.
WINSCARD_API int32_t SCardLocateCardsA(Context, const char*, ReaderState*, uint32_t) {
  return kUnsupportedFeature;
}

WINSCARD_API int32_t SCardListCardsA(Context, const uint8_t*, const void*, uint32_t, char*,
                                     uint32_t*) {
  return kUnsupportedFeature;
}

WINSCARD_API int32_t SCardForgetCardTypeA(Context, const char*) { return kUnsupportedFeature; }

}  // extern "C"

}  // namespace winscard
