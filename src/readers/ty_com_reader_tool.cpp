#include "readers/ty_com_reader_tool.h"

#include <string>

#include "readers/port_list.h"
#include "readers/reader_name.h"
#include "readers/status_word_exchange.h"

namespace orvane {
namespace {

#define ENTRY(name) ORVANE_ENTRY_POINT(TyComEntryPoints, name)

constexpr platform::EntryPoint kEntryPoints[] = {
    ENTRY(TY_Open), ENTRY(TY_Close), ENTRY(TY_Dreset), ENTRY(TY_Dtsi_api), ENTRY(TY_DCardExist),
};

#undef ENTRY

constexpr std::int32_t kBaud = 57600;
constexpr std::uint16_t kSuccess = 0x9000;

constexpr ExchangeRules kRules{
    .source = StatusWordSource::kLibraryResult, .copy = CopyRule::kWhole, .moreDataUnwanted = 1};

constexpr PortListing kPorts{
    .kind = ReaderKindTyCom, .name = ComName, .most = 0, .honoursMax = true};

}  // namespace

std::span<const platform::EntryPoint> TyComEntryPoints::EntryPoints() { return kEntryPoints; }

CTYCOMReaderTool::~CTYCOMReaderTool() { CloseQuietly(*this); }

std::int32_t CTYCOMReaderTool::OpenByName(const char* name, std::int32_t kind) {
  m_nKind = kind;
  const auto port = NumberBehind("COM", name);
  return port ? OpenByPort(*port, kind, 9600) : 0;
}

std::int32_t CTYCOMReaderTool::OpenByPort(std::int32_t port, std::int32_t kind, std::int32_t) {
  m_nKind = kind;
  m_tyreader.Bind();
  if (m_tyreader->TY_Open == nullptr) return 0;
  m_nHandle = m_tyreader->TY_Open(kBaud, FromZero(port));
  if (m_nHandle == -1) return 0;
  m_nPort = FromZero(port);
  SetName(ComName(port));
  m_nKind = ReaderKindTyCom;
  m_nOpenFlag = 1;
  return 1;
}

std::int32_t CTYCOMReaderTool::Close() {
  if (m_nHandle == -1) return 1;
  const std::int32_t handle = std::exchange(m_nHandle, -1);
  if (m_tyreader->TY_Close != nullptr) m_tyreader->TY_Close(handle);
  return 1;
}

std::int32_t CTYCOMReaderTool::ListReaders(std::int32_t, ReaderInfo* list, std::int32_t count,
                                           std::int32_t max) {
  return ListPorts(kPorts, list, count, max);
}

void CTYCOMReaderTool::SetSlot(std::uint32_t slot) { m_nSlot = static_cast<std::int32_t>(slot); }

std::int32_t CTYCOMReaderTool::ResetCard(std::uint8_t* atr, std::uint32_t* atrLen) {
  if (m_nHandle == -1 || m_tyreader->TY_Dreset == nullptr) return 0;
  Reply answer{};
  std::uint16_t length = kReplySize;
  m_wStatus = m_tyreader->TY_Dreset(m_nHandle, static_cast<std::uint8_t>(m_nSlot), &length,
                                    answer.octets.data());
  answer.length = length;
  return m_wStatus == kSuccess ? GiveAtr(answer, atr, atrLen) : 0;
}

std::int32_t CTYCOMReaderTool::Transmit(const std::uint8_t* cmd, std::uint32_t cmdLen,
                                        std::uint8_t* resp, std::uint32_t* respLen) {
  if (m_tyreader->TY_Dtsi_api == nullptr) return 0;
  return ExchangeWithStatusWord(kRules, cmd, cmdLen, resp, respLen);
}

bool CTYCOMReaderTool::Exchange(const std::uint8_t* command, std::uint32_t length, Reply& reply) {
  reply.length = kReplySize;
  reply.statusWord = m_tyreader->TY_Dtsi_api(m_nHandle, static_cast<std::uint8_t>(m_nSlot), length,
                                             command, &reply.length, reply.octets.data());
  return true;
}

}  // namespace orvane
