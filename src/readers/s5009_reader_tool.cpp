#include "readers/s5009_reader_tool.h"

#include <algorithm>
#include <string>

#include "readers/port_list.h"
#include "readers/reader_name.h"
#include "readers/status_word_exchange.h"
#include "util/hex.h"

namespace orvane {
namespace {

#define ENTRY(name) ORVANE_ENTRY_POINT(S5009EntryPoints, name)

constexpr platform::EntryPoint kEntryPoints[] = {
    ENTRY(InitCOM),           ENTRY(CloseCOM),           ENTRY(ExchangeAPDU),
    ENTRY(Mifare_SearchCard), ENTRY(Mifare_GetATS),      ENTRY(CardPowerUP),
    ENTRY(CardPowerDown),     ENTRY(Mifare_CardTypeSet), ENTRY(Mifare_SlectCardType),
    ENTRY(Mifare_ReadBlock),  ENTRY(Mifare_WriteBlock),  ENTRY(Mifare_WriteAccess),
    ENTRY(Mifare_Decrement),  ENTRY(Mifare_Increment),   ENTRY(Mifare_BlockCopy),
};

#undef ENTRY

constexpr std::uint32_t kLongestCommand = 133;
constexpr std::size_t kReplyTextSize = 256;

constexpr ExchangeRules kRules{
    .source = StatusWordSource::kReplyEnd, .copy = CopyRule::kWhole, .moreDataUnwanted = 1};

constexpr PortListing kPorts{
    .kind = ReaderKindS5009, .name = ComName, .most = 0, .honoursMax = true};

}  // namespace

std::span<const platform::EntryPoint> S5009EntryPoints::EntryPoints() { return kEntryPoints; }

CS5009ReaderTool::~CS5009ReaderTool() { CloseQuietly(*this); }

std::int32_t CS5009ReaderTool::OpenByName(const char* name, std::int32_t kind) {
  const auto port = NumberBehind("COM", name);
  return port ? OpenByPort(*port, kind, 9600) : 0;
}

std::int32_t CS5009ReaderTool::OpenByPort(std::int32_t port, std::int32_t kind, std::int32_t) {
  m_s5009.Bind();
  if (kind == ReaderKindS5009Ats) m_nUseAts = 1;
  if (m_s5009->InitCOM == nullptr) return 0;
  m_nHandle = m_s5009->InitCOM(port);
  if (m_nHandle != 0) return 0;
  m_nPort = port;
  m_nKind = kind;
  SetName("S5009 PORT " + std::to_string(port));
  return 1;
}

std::int32_t CS5009ReaderTool::Close() {
  if (m_nHandle == -1) return 1;
  m_nHandle = -1;
  if (m_s5009->CloseCOM != nullptr) {
    m_wStatus = static_cast<std::uint16_t>(m_s5009->CloseCOM(m_nPort));
    if (m_wStatus == 0) SetName("S5009");
  }
  return 1;
}

std::int32_t CS5009ReaderTool::ListReaders(std::int32_t, ReaderInfo* list, std::int32_t count,
                                           std::int32_t max) {
  return ListPorts(kPorts, list, count, max);
}

void CS5009ReaderTool::SetSlot(std::uint32_t slot) { m_nSlot = static_cast<std::int32_t>(slot); }

std::int32_t CS5009ReaderTool::ResetCard(std::uint8_t* atr, std::uint32_t* atrLen) {
  if (m_nHandle == -1) return 0;
  const auto read = m_nUseAts != 0 ? m_s5009->Mifare_GetATS : m_s5009->Mifare_SearchCard;
  Reply answer{};
  if (read == nullptr || read(answer.octets.data(), &answer.length) < 0) return 0;
  return GiveAtr(answer, atr, atrLen);
}

std::int32_t CS5009ReaderTool::Transmit(const std::uint8_t* cmd, std::uint32_t cmdLen,
                                        std::uint8_t* resp, std::uint32_t* respLen) {
  if (cmdLen > kLongestCommand || m_s5009->ExchangeAPDU == nullptr) return 0;
  return ExchangeWithStatusWord(kRules, cmd, cmdLen, resp, respLen);
}

bool CS5009ReaderTool::Exchange(const std::uint8_t* command, std::uint32_t length, Reply& reply) {
  char text[2 * kLongestCommand + 1] = {};
  EncodeHex(command, length, text);
  char replyText[kReplyTextSize] = {};
  std::uint32_t characters = 0;
  const std::int32_t result = m_s5009->ExchangeAPDU(
      m_nSlot, text, static_cast<std::int32_t>(2 * length), replyText, &characters);
  if (result != 0 || characters > sizeof replyText) {
    m_wStatus = 0;
    return false;
  }
  DecodeHex({replyText, characters}, reply.octets.data());
  reply.length = characters / 2;
  return true;
}

}  // namespace orvane
