#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "platform/foreign_call.h"
#include "platform/library.h"
#include "readers/drivers.h"
#include "readers/ports.h"
#include "readers/winscard_types.h"

namespace orvane {
namespace {

using namespace winscard;

struct Winscard : platform::Library {
  Winscard() : Library("winscard.dll") {}

  EntryPoint<LONG(DWORD scope, const void* reserved1, const void* reserved2, SCARDCONTEXT* context)>
      SCardEstablishContext{*this, "SCardEstablishContext"};
  EntryPoint<LONG(SCARDCONTEXT context)> SCardReleaseContext{*this, "SCardReleaseContext"};
  // With SCARD_AUTOALLOCATE as the length, `readers` receives a pointer to the list.
  EntryPoint<LONG(SCARDCONTEXT context, const char* groups, char** readers, DWORD* length)>
      SCardListReadersA{*this, "SCardListReadersA"};
  EntryPoint<LONG(SCARDCONTEXT context, const void* memory)> SCardFreeMemory{*this,
                                                                             "SCardFreeMemory"};
  EntryPoint<LONG(SCARDCONTEXT context, const char* reader, DWORD shareMode, DWORD protocols,
                  SCARDHANDLE* card, DWORD* protocol)>
      SCardConnectA{*this, "SCardConnectA"};
  EntryPoint<LONG(SCARDHANDLE card, DWORD disposition)> SCardDisconnect{*this, "SCardDisconnect"};
  EntryPoint<LONG(SCARDHANDLE card, const SCARD_IO_REQUEST* sendHeader, const std::uint8_t* command,
                  DWORD commandLength, SCARD_IO_REQUEST* receiveHeader, std::uint8_t* response,
                  DWORD* responseLength)>
      SCardTransmit{*this, "SCardTransmit"};
  EntryPoint<LONG(SCARDHANDLE card, DWORD attribute, std::uint8_t* value, DWORD* length)>
      SCardGetAttrib{*this, "SCardGetAttrib"};
  EntryPoint<LONG(SCARDHANDLE card, DWORD code, const void* in, DWORD inLength, void* out,
                  DWORD outRoom, DWORD* outLength)>
      SCardControl{*this, "SCardControl"};
  EntryPoint<LONG(SCARDCONTEXT context, DWORD milliseconds, SCARD_READERSTATEA* states,
                  DWORD count)>
      SCardGetStatusChangeA{*this, "SCardGetStatusChangeA"};
  EntryPoint<const SCARD_IO_REQUEST> g_rgSCardT0Pci{*this, "g_rgSCardT0Pci"};
  EntryPoint<const SCARD_IO_REQUEST> g_rgSCardT1Pci{*this, "g_rgSCardT1Pci"};

  // Bound, never called.
  EntryPoint<void()> SCardReconnect{*this, "SCardReconnect"};
  EntryPoint<void()> SCardBeginTransaction{*this, "SCardBeginTransaction"};
  EntryPoint<void()> SCardEndTransaction{*this, "SCardEndTransaction"};
  EntryPoint<void()> SCardStatusA{*this, "SCardStatusA"};
  EntryPoint<void()> SCardLocateCardsA{*this, "SCardLocateCardsA"};
  EntryPoint<void()> SCardListCardsA{*this, "SCardListCardsA"};
  EntryPoint<void()> SCardForgetCardTypeA{*this, "SCardForgetCardTypeA"};
  EntryPoint<const SCARD_IO_REQUEST> g_rgSCardRawPci{*this, "g_rgSCardRawPci"};
};

constexpr std::int32_t kListedByDefault = 16;
constexpr DWORD kReadAtrCode = SCARD_CTL_CODE(3000);
constexpr DWORD kExchangeCode = SCARD_CTL_CODE(3001);
// A list of group names, ended by an empty name.
constexpr char kDefaultReaders[] = "SCard$DefaultReaders\0";
constexpr DWORD kStatusWaitMilliseconds = 100;

constexpr ExchangeRules kRules{.source = StatusWordSource::kResponseEnd,
                               .copy = CopyRule::kStrip,
                               .moreDataUnwanted = 1,
                               .showsSecondStatus = true};

// 0 if the library gives no context.
SCARDCONTEXT Establish(const Winscard& winscard) {
  SCARDCONTEXT context = 0;
  const LONG code = winscard.SCardEstablishContext(SCARD_SCOPE_USER, nullptr, nullptr, &context);
  return code == SCARD_S_SUCCESS ? context : 0;
}

// The context of one listing. The destructor releases it.
class ListingContext {
 public:
  explicit ListingContext(const Winscard& winscard)
      : m_winscard(winscard), m_context(Establish(winscard)) {}
  ListingContext(const ListingContext&) = delete;
  ListingContext& operator=(const ListingContext&) = delete;
  ~ListingContext() {
    Guarded([this] { return Release(); });
  }

  operator SCARDCONTEXT() const { return m_context; }

  LONG Release() {
    if (m_context == 0) return SCARD_S_SUCCESS;
    return m_winscard.SCardReleaseContext(std::exchange(m_context, 0));
  }

 private:
  const Winscard& m_winscard;
  SCARDCONTEXT m_context;
};

// The names of the readers in the default group, in the library's order.
class ReaderNames {
 public:
  ReaderNames(const Winscard& winscard, SCARDCONTEXT context)
      : m_winscard(winscard), m_context(context) {
    DWORD length = SCARD_AUTOALLOCATE;
    const LONG code = platform::CallForeign(
        [&] { return winscard.SCardListReadersA(context, kDefaultReaders, &m_list, &length); });
    if (code != SCARD_S_SUCCESS) m_list = nullptr;
    m_rest = {m_list, m_list != nullptr ? length : 0};
  }
  ReaderNames(const ReaderNames&) = delete;
  ReaderNames& operator=(const ReaderNames&) = delete;
  // May run while an exception passes: nothing that the library throws may replace that one.
  ~ReaderNames() {
    Guarded([this] { return Free(); });
  }

  // Gives the list back to the library. No name may be used after that.
  LONG Free() {
    if (m_list == nullptr) return SCARD_S_SUCCESS;
    return platform::CallForeign(
        [&] { return m_winscard.SCardFreeMemory(m_context, std::exchange(m_list, nullptr)); });
  }

  // The next name; the empty text at the end.
  std::string_view Next() {
    const auto end = std::find(m_rest.begin(), m_rest.end(), '\0');
    const std::string_view name = m_rest.substr(0, static_cast<std::size_t>(end - m_rest.begin()));
    // Once the empty name is read, the list has ended for good.
    m_rest.remove_prefix(name.empty() ? m_rest.size() : std::min(name.size() + 1, m_rest.size()));
    return name;
  }

 private:
  const Winscard& m_winscard;
  SCARDCONTEXT m_context;
  char* m_list = nullptr;
  std::string_view m_rest;
};

// A card handle of the library: 0 for a reader without a card, -1 for none. The library gets the
// low half, sign-extended. If it gave a wider handle and refuses the low half, it gets the whole
// handle from then on. The questions below always look at the whole handle.
class CardHandle {
 public:
  CardHandle() = default;
  explicit CardHandle(SCARDHANDLE given) : m_given(given), m_passed(Extended(given)) {}

  bool IsClosed() const { return m_given == kClosed; }
  bool IsWithoutCard() const { return m_given == 0; }
  std::int32_t LowHalf() const { return static_cast<std::int32_t>(m_given); }

  // Runs a call with the handle, a second time if need be, and gives the library's code.
  template <typename Call>
  LONG Pass(Call call) {
    const LONG code = call(m_passed);
    const bool refused = code == ERROR_INVALID_HANDLE || code == SCARD_E_INVALID_HANDLE;
    if (!refused || m_passed == m_given) return code;
    m_passed = m_given;
    return call(m_passed);
  }

 private:
  static constexpr auto kClosed = static_cast<SCARDHANDLE>(-1);

  static SCARDHANDLE Extended(SCARDHANDLE handle) {
    return static_cast<SCARDHANDLE>(std::int64_t{static_cast<std::int32_t>(handle)});
  }

  SCARDHANDLE m_given = kClosed;
  SCARDHANDLE m_passed = kClosed;
};

// Any reader of the platform's PC/SC service. A reader opens without a card too; ResetCard connects
// again when a card has come or was changed. Card slot 0 uses the standard calls, any other slot
// two control codes of the reader.
class CPCSCReaderTool final : public CReaderToolBase {
 public:
  CPCSCReaderTool() : CReaderToolBase(&kRules) {}
  ~CPCSCReaderTool() override {
    if (m_hContext != 0) Guarded([this] { return m_winscard.SCardReleaseContext(m_hContext); });
  }

  std::int32_t ListReaders(std::int32_t, ReaderInfo* list, std::int32_t,
                           std::int32_t max) override {
    m_winscard.Bind();
    if (!CanListReaders()) return 0;
    ListingContext context(m_winscard);
    if (context == 0) return 0;
    ReaderNames names(m_winscard, context);
    const std::int32_t limit = max > 0 ? max : kListedByDefault;
    std::int32_t written = 0;
    while (written < limit) {
      const std::string_view name = names.Next();
      if (name.empty()) break;
      WriteRecord(list[written++], ReaderKindPcsc, false, 0, name);
    }
    names.Free();
    context.Release();
    return written;
  }

  std::int32_t OpenByName(const char* name, std::int32_t) override {
    m_winscard.Bind();
    if (!m_winscard.SCardEstablishContext || !m_winscard.SCardReleaseContext ||
        !m_winscard.SCardConnectA || !EstablishContext()) {
      return 0;
    }
    const LONG code = Connect(name);
    if (code != SCARD_S_SUCCESS && code != SCARD_W_REMOVED_CARD) return 0;
    if (code == SCARD_W_REMOVED_CARD) Keep(CardHandle(0));
    m_nKind = ReaderKindPcsc;
    SetName(name);
    return 1;
  }

  std::int32_t OpenByPort(std::int32_t port, std::int32_t, std::int32_t) override {
    m_winscard.Bind();
    if (!CanListReaders() || !EstablishContext()) return 0;
    ReaderNames names(m_winscard, m_hContext);
    std::string name;
    for (std::int32_t place = 0; place < port; ++place) {
      name = names.Next();
      if (name.empty()) break;
    }
    const auto open = [&] { return OpenByName(name.c_str(), ReaderKindPcsc); };
    const bool opened = !name.empty() && platform::CallForeign(open) != 0;
    names.Free();
    if (!opened) return 0;
    m_nPort = port - 1;
    return 1;
  }

  std::int32_t Close() override {
    if (m_card.IsClosed()) return 1;
    CardHandle closing = m_card;
    Keep(CardHandle());
    if (m_winscard.SCardDisconnect) {
      closing.Pass(
          [this](SCARDHANDLE card) { return m_winscard.SCardDisconnect(card, SCARD_LEAVE_CARD); });
    }
    return 1;
  }

  std::int32_t ResetCard(std::uint8_t* atr, std::uint32_t* atrLen) override {
    if (m_card.IsClosed() || !m_winscard.SCardGetAttrib || !m_winscard.SCardControl) return 0;
    Response answer{};
    LONG code = m_card.IsWithoutCard() ? SCARD_W_REMOVED_CARD : ReadAtr(answer);
    if (code == SCARD_W_REMOVED_CARD) code = ReconnectAndReadAtr(answer);
    return code == SCARD_S_SUCCESS ? GiveAtr(answer, atr, atrLen) : 0;
  }

 private:
  bool Exchange(const std::uint8_t* command, std::uint32_t length, Response& response) override {
    if (!m_winscard.SCardTransmit || !m_winscard.SCardControl) return false;
    const SCARD_IO_REQUEST* const header =
        m_dwProtocol == SCARD_PROTOCOL_T0 ? m_winscard.g_rgSCardT0Pci : m_winscard.g_rgSCardT1Pci;
    if (m_nSlot == 0 && header == nullptr) return false;
    return Read(response, [&](SCARDHANDLE card) {
             return m_nSlot == 0
                        ? m_winscard.SCardTransmit(card, header, command, length, nullptr,
                                                   response.octets.data(), &response.length)
                        : m_winscard.SCardControl(card, kExchangeCode, command, length,
                                                  response.octets.data(), kResponseSize,
                                                  &response.length);
           }) == SCARD_S_SUCCESS;
  }

  LONG ReadAtr(Response& atr) {
    return Read(atr, [&](SCARDHANDLE card) {
      return m_nSlot == 0 ? m_winscard.SCardGetAttrib(card, SCARD_ATTR_ATR_STRING,
                                                      atr.octets.data(), &atr.length)
                          : m_winscard.SCardControl(card, kReadAtrCode, nullptr, 0,
                                                    atr.octets.data(), kResponseSize, &atr.length);
    });
  }

  // Runs a call that fills a response. The response must come in all zero; before a second run this
  // clears it again.
  template <typename Call>
  LONG Read(Response& response, Call call) {
    bool again = false;
    return m_card.Pass([&](SCARDHANDLE card) {
      if (std::exchange(again, true)) response = {};
      response.length = kResponseSize;
      return call(card);
    });
  }

  LONG ReconnectAndReadAtr(Response& atr) {
    if (!CardIsPresent() || !m_winscard.SCardConnectA) return SCARD_W_REMOVED_CARD;
    const LONG code = Connect(m_szName);
    atr = {};
    return code == SCARD_S_SUCCESS ? ReadAtr(atr) : code;
  }

  bool CardIsPresent() {
    if (!m_winscard.SCardGetStatusChangeA) return false;
    SCARD_READERSTATEA state{};
    state.szReader = m_szName;
    const LONG code =
        m_winscard.SCardGetStatusChangeA(m_hContext, kStatusWaitMilliseconds, &state, 1);
    return code == SCARD_S_SUCCESS && (state.dwEventState & SCARD_STATE_PRESENT) != 0;
  }

  bool CanListReaders() const {
    return m_winscard.SCardEstablishContext && m_winscard.SCardReleaseContext &&
           m_winscard.SCardListReadersA && m_winscard.SCardFreeMemory;
  }

  // The context stays for the life of the tool, over all opens and closes.
  bool EstablishContext() {
    if (m_hContext == 0) m_hContext = Establish(m_winscard);
    return m_hContext != 0;
  }

  LONG Connect(const char* name) {
    SCARDHANDLE handle = 0;
    m_dwProtocol = 0;
    const LONG code =
        m_winscard.SCardConnectA(m_hContext, name, SCARD_SHARE_SHARED,
                                 SCARD_PROTOCOL_T0 | SCARD_PROTOCOL_T1, &handle, &m_dwProtocol);
    if (code == SCARD_S_SUCCESS) Keep(CardHandle(handle));
    return code;
  }

  void Keep(const CardHandle& card) {
    m_card = card;
    m_nHandle = card.LowHalf();
  }

  CardHandle m_card;  // m_nHandle is its low half
  Winscard m_winscard;
};

}  // namespace

std::unique_ptr<CReaderToolBase> MakePcscReaderTool() {
  return std::make_unique<CPCSCReaderTool>();
}

}  // namespace orvane
