#include "readers/pcsc_interface.h"

namespace orvane {
namespace {

#define PCSC(name) ORVANE_ENTRY_POINT(PcscEntryPoints, name)

constexpr platform::EntryPoint kEntryPoints[] = {
    PCSC(SCardEstablishContext), PCSC(SCardReleaseContext),   PCSC(SCardListReadersA),
    PCSC(SCardFreeMemory),       PCSC(SCardConnectA),         PCSC(SCardDisconnect),
    PCSC(SCardTransmit),         PCSC(SCardGetAttrib),        PCSC(SCardControl),
    PCSC(SCardGetStatusChangeA), PCSC(g_rgSCardT0Pci),        PCSC(g_rgSCardT1Pci),
    PCSC(SCardReconnect),        PCSC(SCardBeginTransaction), PCSC(SCardEndTransaction),
    PCSC(SCardStatusA),          PCSC(SCardLocateCardsA),     PCSC(SCardListCardsA),
    PCSC(SCardForgetCardTypeA),  PCSC(g_rgSCardRawPci),
};

#undef PCSC

}  // namespace

std::span<const platform::EntryPoint> PcscEntryPoints::EntryPoints() { return kEntryPoints; }

}  // namespace orvane
