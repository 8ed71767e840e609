#include "readers/pcsc_reader_tool.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "platform/foreign_call.h"
#include "readers/port_list.h"
#include "readers/status_word_exchange.h"

namespace orvane {
namespace {

constexpr std::int32_t kListedByDefault = 16;
constexpr DWORD kReadAtrCode = SCARD_CTL_CODE(3000);
constexpr DWORD kExchangeCode = SCARD_CTL_CODE(3001);
// A list of groups: the empty name ends it.
constexpr char kDefaultReaders[] = "SCard$DefaultReaders\0";
constexpr DWORD kStatusWaitMilliseconds = 100;

constexpr ExchangeRules kRules{.source = StatusWordSource::kReplyEnd,
                               .copy = CopyRule::kStrip,
                               .moreDataUnwanted = 1,
                               .showsSecondStatus = true};

// 0 if there is none.
SCARDCONTEXT Establish(const PcscEntryPoints& winscard) {
  SCARDCONTEXT context = 0;
  const LONG code = winscard.SCardEstablishContext(SCARD_SCOPE_USER, nullptr, nullptr, &context);
  return code == SCARD_S_SUCCESS ? context : 0;
}

// The context of one listing, released when that is over.
class ListingContext {
 public:
  explicit ListingContext(const PcscEntryPoints& winscard)
      : m_winscard(winscard), m_context(Establish(winscard)) {}
  ListingContext(const ListingContext&) = delete;
  ListingContext& operator=(const ListingContext&) = delete;
  ~ListingContext() {
    Quietly([this] { Release(); });
  }

  operator SCARDCONTEXT() const { return m_context; }

  void Release() {
    if (m_context != 0) m_winscard.SCardReleaseContext(std::exchange(m_context, 0));
  }

 private:
  const PcscEntryPoints& m_winscard;
  SCARDCONTEXT m_context;
};

// The names of the readers in the default group, in the library's order.
class ReaderNames {
 public:
  ReaderNames(const PcscEntryPoints& winscard, SCARDCONTEXT context)
      : m_winscard(winscard), m_context(context) {
    DWORD length = SCARD_AUTOALLOCATE;
    const LONG code = platform::CallForeign(
        [&] { return winscard.SCardListReadersA(context, kDefaultReaders, &m_list, &length); });
    if (code != SCARD_S_SUCCESS) m_list = nullptr;
    m_rest = {m_list, m_list != nullptr ? length : 0};
  }
  ReaderNames(const ReaderNames&) = delete;
  ReaderNames& operator=(const ReaderNames&) = delete;
  // The exception that this object goes by is the one that counts.
  ~ReaderNames() {
    Quietly([this] { Free(); });
  }

  // Gives the list back to the library; no name is to be used after it.
  void Free() {
    if (m_list == nullptr) return;
    platform::CallForeign(
        [&] { return m_winscard.SCardFreeMemory(m_context, std::exchange(m_list, nullptr)); });
  }

  // The next name; the empty text at the end.
  std::string_view Next() {
    const auto end = std::find(m_rest.begin(), m_rest.end(), '\0');
    const std::string_view name = m_rest.substr(0, static_cast<std::size_t>(end - m_rest.begin()));
    // The empty name ends the list for good.
    m_rest.remove_prefix(name.empty() ? m_rest.size() : std::min(name.size() + 1, m_rest.size()));
    return name;
  }

 private:
  const PcscEntryPoints& m_winscard;
  SCARDCONTEXT m_context;
  char* m_list = nullptr;
  std::string_view m_rest;
};

}  // namespace

CPCSCReaderTool::~CPCSCReaderTool() {
  CloseQuietly(*this);
  Quietly([this] {
    if (m_hContext != 0) m_winscard->SCardReleaseContext(m_hContext);
  });
}

std::int32_t CPCSCReaderTool::ListReaders(std::int32_t, ReaderInfo* list, std::int32_t,
                                          std::int32_t max) {
  m_winscard.Bind();
  if (!CanListReaders()) return 0;
  ListingContext context(*m_winscard);
  if (context == 0) return 0;
  ReaderNames names(*m_winscard, context);
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

std::int32_t CPCSCReaderTool::OpenByName(const char* name, std::int32_t) {
  m_winscard.Bind();
  if (m_winscard->SCardEstablishContext == nullptr || m_winscard->SCardReleaseContext == nullptr ||
      m_winscard->SCardConnectA == nullptr || !EstablishContext()) {
    return 0;
  }
  const LONG code = Connect(name);
  if (code != SCARD_S_SUCCESS && code != SCARD_W_REMOVED_CARD) return 0;
  if (code == SCARD_W_REMOVED_CARD) Keep(0);
  m_nKind = ReaderKindPcsc;
  SetName(name);
  return 1;
}

std::int32_t CPCSCReaderTool::OpenByPort(std::int32_t port, std::int32_t, std::int32_t) {
  m_winscard.Bind();
  if (!CanListReaders() || !EstablishContext()) return 0;
  ReaderNames names(*m_winscard, m_hContext);
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

std::int32_t CPCSCReaderTool::Close() {
  if (m_card.IsClosed()) return 1;
  CardHandle closing = m_card;
  Keep(static_cast<SCARDHANDLE>(-1));
  if (m_winscard->SCardDisconnect != nullptr) {
    closing.Pass(
        [this](SCARDHANDLE card) { return m_winscard->SCardDisconnect(card, SCARD_LEAVE_CARD); });
  }
  return 1;
}

void CPCSCReaderTool::SetSlot(std::uint32_t slot) { m_nSlot = static_cast<std::int32_t>(slot); }

std::int32_t CPCSCReaderTool::ResetCard(std::uint8_t* atr, std::uint32_t* atrLen) {
  if (m_card.IsClosed() || m_winscard->SCardGetAttrib == nullptr ||
      m_winscard->SCardControl == nullptr) {
    return 0;
  }
  Reply answer;
  LONG code = m_card.IsWithoutCard() ? SCARD_W_REMOVED_CARD : ReadAtr(answer);
  if (code == SCARD_W_REMOVED_CARD) code = ReconnectAndReadAtr(answer);
  return code == SCARD_S_SUCCESS ? GiveAtr(answer, atr, atrLen) : 0;
}

std::int32_t CPCSCReaderTool::Transmit(const std::uint8_t* cmd, std::uint32_t cmdLen,
                                       std::uint8_t* resp, std::uint32_t* respLen) {
  if (m_winscard->SCardTransmit == nullptr || m_winscard->SCardControl == nullptr) return 0;
  return ExchangeWithStatusWord(kRules, cmd, cmdLen, resp, respLen);
}

bool CPCSCReaderTool::Exchange(const std::uint8_t* command, std::uint32_t length, Reply& reply) {
  const SCARD_IO_REQUEST* const header =
      m_dwProtocol == SCARD_PROTOCOL_T0 ? m_winscard->g_rgSCardT0Pci : m_winscard->g_rgSCardT1Pci;
  if (m_nSlot == 0 && header == nullptr) return false;
  const LONG code = m_card.Pass([&](SCARDHANDLE card) {
    reply = {.octets = {}, .length = kReplySize, .statusWord = 0};
    return m_nSlot == 0 ? m_winscard->SCardTransmit(card, header, command, length, nullptr,
                                                    reply.octets.data(), &reply.length)
                        : m_winscard->SCardControl(card, kExchangeCode, command, length,
                                                   reply.octets.data(), kReplySize, &reply.length);
  });
  return code == SCARD_S_SUCCESS;
}

bool CPCSCReaderTool::CanListReaders() const {
  return m_winscard->SCardEstablishContext != nullptr &&
         m_winscard->SCardReleaseContext != nullptr && m_winscard->SCardListReadersA != nullptr &&
         m_winscard->SCardFreeMemory != nullptr;
}

// The context stays for the life of the tool, over any number of opens and closes.
bool CPCSCReaderTool::EstablishContext() {
  if (m_hContext == 0) m_hContext = Establish(*m_winscard);
  return m_hContext != 0;
}

LONG CPCSCReaderTool::Connect(const char* name) {
  SCARDHANDLE handle = 0;
  m_dwProtocol = 0;
  const LONG code =
      m_winscard->SCardConnectA(m_hContext, name, SCARD_SHARE_SHARED,
                                SCARD_PROTOCOL_T0 | SCARD_PROTOCOL_T1, &handle, &m_dwProtocol);
  if (code == SCARD_S_SUCCESS) Keep(handle);
  return code;
}

void CPCSCReaderTool::Keep(SCARDHANDLE handle) {
  m_card = CardHandle(handle);
  m_nHandle = static_cast<std::int32_t>(handle);
}

LONG CPCSCReaderTool::ReadAtr(Reply& atr) {
  return m_card.Pass([&](SCARDHANDLE card) {
    atr = {.octets = {}, .length = kReplySize, .statusWord = 0};
    return m_nSlot == 0 ? m_winscard->SCardGetAttrib(card, SCARD_ATTR_ATR_STRING, atr.octets.data(),
                                                     &atr.length)
                        : m_winscard->SCardControl(card, kReadAtrCode, nullptr, 0,
                                                   atr.octets.data(), kReplySize, &atr.length);
  });
}

LONG CPCSCReaderTool::ReconnectAndReadAtr(Reply& atr) {
  if (!CardIsPresent() || m_winscard->SCardConnectA == nullptr) return SCARD_W_REMOVED_CARD;
  const LONG code = Connect(m_szName);
  return code == SCARD_S_SUCCESS ? ReadAtr(atr) : code;
}

bool CPCSCReaderTool::CardIsPresent() {
  if (m_winscard->SCardGetStatusChangeA == nullptr) return false;
  SCARD_READERSTATEA state{};
  state.szReader = m_szName;
  return m_winscard->SCardGetStatusChangeA(m_hContext, kStatusWaitMilliseconds, &state, 1) ==
             SCARD_S_SUCCESS &&
         (state.dwEventState & SCARD_STATE_PRESENT) != 0;
}

}  // namespace orvane
