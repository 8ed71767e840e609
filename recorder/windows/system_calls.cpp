// The other exports of Windows' own library: programs that are linked with it need all of them.

#include <filesystem>

#include "recorder/next.h"
#include "recorder/winscard.h"

using namespace winscard;

extern "C" {

RECORDER_API LONG SCardConnectW(SCARDCONTEXT context, const wchar_t* reader, DWORD shareMode,
                                DWORD protocols, SCARDHANDLE* card, DWORD* protocol) {
  static const auto next = recorder::Next<decltype(SCardConnectW)>("SCardConnectW");
  if (next == nullptr) return SCARD_E_UNSUPPORTED_FEATURE;
  const std::u8string name = std::filesystem::path(reader != nullptr ? reader : L"").u8string();
  return recorder::Connect(
      {name.begin(), name.end()},
      [&] { return next(context, reader, shareMode, protocols, card, protocol); }, card, protocol);
}

PASS_ON(SCardAccessNewReaderEvent)
PASS_ON(SCardAccessStartedEvent)
PASS_ON(SCardAddReaderToGroupA)
PASS_ON(SCardAddReaderToGroupW)
PASS_ON(SCardAudit)
PASS_ON(SCardCancel)
PASS_ON(SCardDlgExtendedError)
PASS_ON(SCardForgetCardTypeW)
PASS_ON(SCardForgetReaderA)
PASS_ON(SCardForgetReaderGroupA)
PASS_ON(SCardForgetReaderGroupW)
PASS_ON(SCardForgetReaderW)
PASS_ON(SCardGetCardTypeProviderNameA)
PASS_ON(SCardGetCardTypeProviderNameW)
PASS_ON(SCardGetDeviceTypeIdA)
PASS_ON(SCardGetDeviceTypeIdW)
PASS_ON(SCardGetProviderIdA)
PASS_ON(SCardGetProviderIdW)
PASS_ON(SCardGetReaderDeviceInstanceIdA)
PASS_ON(SCardGetReaderDeviceInstanceIdW)
PASS_ON(SCardGetReaderIconA)
PASS_ON(SCardGetReaderIconW)
PASS_ON(SCardGetStatusChangeW)
PASS_ON(SCardGetTransmitCount)
PASS_ON(SCardIntroduceCardTypeA)
PASS_ON(SCardIntroduceCardTypeW)
PASS_ON(SCardIntroduceReaderA)
PASS_ON(SCardIntroduceReaderGroupA)
PASS_ON(SCardIntroduceReaderGroupW)
PASS_ON(SCardIntroduceReaderW)
PASS_ON(SCardIsValidContext)
PASS_ON(SCardListCardsW)
PASS_ON(SCardListInterfacesA)
PASS_ON(SCardListInterfacesW)
PASS_ON(SCardListReaderGroupsA)
PASS_ON(SCardListReaderGroupsW)
PASS_ON(SCardListReadersW)
PASS_ON(SCardListReadersWithDeviceInstanceIdA)
PASS_ON(SCardListReadersWithDeviceInstanceIdW)
PASS_ON(SCardLocateCardsByATRA)
PASS_ON(SCardLocateCardsByATRW)
PASS_ON(SCardLocateCardsW)
PASS_ON(SCardReadCacheA)
PASS_ON(SCardReadCacheW)
PASS_ON(SCardReleaseAllEvents)
PASS_ON(SCardReleaseNewReaderEvent)
PASS_ON(SCardReleaseStartedEvent)
PASS_ON(SCardRemoveReaderFromGroupA)
PASS_ON(SCardRemoveReaderFromGroupW)
PASS_ON(SCardSetAttrib)
PASS_ON(SCardSetCardTypeProviderNameA)
PASS_ON(SCardSetCardTypeProviderNameW)
PASS_ON(SCardState)
PASS_ON(SCardStatusW)
PASS_ON(SCardWriteCacheA)
PASS_ON(SCardWriteCacheW)

}  // extern "C"
