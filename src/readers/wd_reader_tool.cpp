#include "readers/wd_reader_tool.h"

#include <cstring>

#include "readers/port_list.h"
#include "readers/status_word_exchange.h"

namespace orvane {
namespace {

#define ENTRY(name) ORVANE_ENTRY_POINT(WdEntryPoints, name)

constexpr platform::EntryPoint kEntryPoints[] = {
    ENTRY(CT_open), ENTRY(CT_close), ENTRY(ICC_tsi_api), ENTRY(ICC_set_NAD), ENTRY(ICC_reset),
};

#undef ENTRY

constexpr std::uint32_t kNodeAddress = 21;
constexpr std::uint32_t kLongestCommand = 255;
constexpr std::uint16_t kCallFailed = 0xFFFF;
constexpr std::uint16_t kNoExchange = 0x6FF0;

constexpr ExchangeRules kRules{.source = StatusWordSource::kLibraryResult,
                               .copy = CopyRule::kWhole,
                               .moreDataUnwanted = 1,
                               .confirmsSecondEnd = true};

}  // namespace

std::span<const platform::EntryPoint> WdEntryPoints::EntryPoints() { return kEntryPoints; }

CWDReaderTool::CWDReaderTool() { m_wdcrwx.Bind(platform::LoadModuleFromOwnFolder); }

CWDReaderTool::~CWDReaderTool() { CloseQuietly(*this); }

std::int32_t CWDReaderTool::OpenByName(const char* name, std::int32_t kind) {
  m_nKind = kind;
  m_wdcrwx.Bind(platform::LoadModuleFromOwnFolder);
  if (std::strlen(name) < 2) return 0;
  m_nHandle = 0;
  if (m_wdcrwx->CT_open == nullptr) return 0;
  m_nHandle = m_wdcrwx->CT_open(name + 2, 0, 0);
  if (m_nHandle <= 0) return 0;
  SetSlot(kNodeAddress);
  return 1;
}

std::int32_t CWDReaderTool::Close() {
  if (m_nHandle == -1) return 1;
  if (m_wdcrwx->CT_close == nullptr || m_wdcrwx->CT_close(m_nHandle) != 0) return 0;
  SetName("WD");
  m_nHandle = -1;
  return 1;
}

std::int32_t CWDReaderTool::ListReaders(std::int32_t, ReaderInfo* list, std::int32_t,
                                        std::int32_t) {
  WriteRecord(list[0], ReaderKindWd, false, 0, "WDUSB1");
  return 1;
}

void CWDReaderTool::SetSlot(std::uint32_t slot) {
  m_nSlot = static_cast<std::int32_t>(slot);
  if (m_wdcrwx->ICC_set_NAD != nullptr) m_wdcrwx->ICC_set_NAD(m_nHandle, slot);
}

std::int32_t CWDReaderTool::ResetCard(std::uint8_t* atr, std::uint32_t* atrLen) {
  constexpr std::uint8_t kReset[] = {0x00, 0x12, 0x00, 0x00, 0x00};
  return m_nHandle != -1 ? Transmit(kReset, sizeof kReset, atr, atrLen) : 0;
}

std::int32_t CWDReaderTool::Transmit(const std::uint8_t* cmd, std::uint32_t cmdLen,
                                     std::uint8_t* resp, std::uint32_t* respLen) {
  if (cmdLen > kLongestCommand || m_wdcrwx->ICC_tsi_api == nullptr) return 0;
  return ExchangeWithStatusWord(kRules, cmd, cmdLen, resp, respLen);
}

bool CWDReaderTool::Exchange(const std::uint8_t* command, std::uint32_t length, Reply& reply) {
  m_wStatus = m_wdcrwx->ICC_tsi_api(m_nHandle, static_cast<std::uint8_t>(length), command,
                                    &reply.length, reply.octets.data());
  reply.statusWord = m_wStatus;
  return m_wStatus != kCallFailed && m_wStatus != kNoExchange;
}

}  // namespace orvane
