#include "readers/bsit_reader_tool.h"

#include <string>

#include "readers/port_list.h"
#include "readers/reader_name.h"
#include "readers/status_word_exchange.h"

namespace orvane {
namespace {

#define ENTRY(name) ORVANE_ENTRY_POINT(BsitEntryPoints, name)

constexpr platform::EntryPoint kEntryPoints[] = {
    ENTRY(bsit_gethidlist), ENTRY(bsit_openHID),  ENTRY(bsit_CloseHID),     ENTRY(bsit_SetSlot),
    ENTRY(bsit_ResetCard),  ENTRY(bsit_SendApdu), ENTRY(bsit_GetCardState), ENTRY(bsit_CloseCard),
};

#undef ENTRY

constexpr ExchangeRules kRules{
    .source = StatusWordSource::kReplyEnd, .copy = CopyRule::kStrip, .moreDataUnwanted = 0};

constexpr char kMarker[] = "BSIT:";

std::string BsitName(std::int32_t port) { return kMarker + std::to_string(port); }

constexpr PortListing kPorts{
    .kind = ReaderKindBsit, .name = BsitName, .most = 16, .honoursMax = false};

}  // namespace

std::span<const platform::EntryPoint> BsitEntryPoints::EntryPoints() { return kEntryPoints; }

CBSITReaderTool::~CBSITReaderTool() { CloseQuietly(*this); }

std::int32_t CBSITReaderTool::OpenByName(const char* name, std::int32_t kind) {
  m_nKind = kind;
  const auto port = NumberBehind(kMarker, name);
  return port ? OpenByPort(*port, kind, 9600) : 0;
}

std::int32_t CBSITReaderTool::OpenByPort(std::int32_t port, std::int32_t, std::int32_t) {
  m_nPort = 0;
  m_bsit.Bind();
  if (m_bsit->bsit_openHID == nullptr) return 0;
  m_nHandle = m_bsit->bsit_openHID(0, static_cast<std::uint16_t>(FromZero(port)), 0);
  if (m_nHandle == -1) return 0;
  m_nPort = FromZero(port);
  SetName(BsitName(port));
  m_nKind = ReaderKindBsit;
  SetSlot(0);
  return 1;
}

std::int32_t CBSITReaderTool::Close() {
  if (m_nHandle == -1) return 1;
  const std::int32_t handle = std::exchange(m_nHandle, -1);
  if (m_bsit->bsit_CloseHID != nullptr) m_bsit->bsit_CloseHID(handle);
  SetName(kMarker);
  return 1;
}

std::int32_t CBSITReaderTool::ListReaders(std::int32_t, ReaderInfo* list, std::int32_t,
                                          std::int32_t max) {
  m_bsit.Bind();
  return m_bsit->bsit_gethidlist != nullptr
             ? ListPorts(kPorts, list, m_bsit->bsit_gethidlist(), max)
             : 0;
}

void CBSITReaderTool::SetSlot(std::uint32_t slot) {
  m_bsit.Bind();
  if (m_bsit->bsit_SetSlot != nullptr && m_bsit->bsit_SetSlot(m_nHandle, slot) == 0) {
    m_nSlot = static_cast<std::int32_t>(slot);
  }
}

std::int32_t CBSITReaderTool::ResetCard(std::uint8_t* atr, std::uint32_t* atrLen) {
  if (m_nHandle == -1 || m_bsit->bsit_ResetCard == nullptr) return 0;
  Reply answer{};
  if (m_bsit->bsit_ResetCard(m_nHandle, answer.octets.data(), &answer.length) != 0) return 0;
  return GiveAtr(answer, atr, atrLen);
}

std::int32_t CBSITReaderTool::Transmit(const std::uint8_t* cmd, std::uint32_t cmdLen,
                                       std::uint8_t* resp, std::uint32_t* respLen) {
  if (m_bsit->bsit_SendApdu == nullptr) return 0;
  return ExchangeWithStatusWord(kRules, cmd, cmdLen, resp, respLen);
}

bool CBSITReaderTool::Exchange(const std::uint8_t* command, std::uint32_t length, Reply& reply) {
  return m_bsit->bsit_SendApdu(m_nHandle, length, command, &reply.length, reply.octets.data()) == 0;
}

}  // namespace orvane
