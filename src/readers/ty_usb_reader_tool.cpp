#include "readers/ty_usb_reader_tool.h"

#include <string>

#include "readers/port_list.h"
#include "readers/reader_name.h"
#include "readers/status_word_exchange.h"

namespace orvane {
namespace {

#define ENTRY(name) ORVANE_ENTRY_POINT(TyUsbEntryPoints, name)

constexpr platform::EntryPoint kEntryPoints[] = {
    ENTRY(TYKey_Change),       ENTRY(TYKey_Status),     ENTRY(TYKey_OpenTYKey),
    ENTRY(TYKey_CloseTYKey),   ENTRY(TYKey_ColdReset),  ENTRY(TYKey_SendCommand),
    ENTRY(TYKey_GetATR),       ENTRY(TYKey_CardExist),  ENTRY(TYKey_KeyExist),
    ENTRY(TYKey_BeginTransEx), ENTRY(TYKey_EndTransEx),
};

#undef ENTRY

constexpr std::int32_t kKeys = 16;
constexpr std::uint16_t kSuccess = 0x9000;

constexpr ExchangeRules kRules{.source = StatusWordSource::kLibraryResult,
                               .copy = CopyRule::kWhole,
                               .moreDataUnwanted = 1,
                               .showsSecondStatus = true};

std::string UsbName(std::int32_t port) { return "USB" + std::to_string(port); }

}  // namespace

std::span<const platform::EntryPoint> TyUsbEntryPoints::EntryPoints() { return kEntryPoints; }

CTYUSBReaderTool::~CTYUSBReaderTool() { CloseQuietly(*this); }

std::int32_t CTYUSBReaderTool::OpenByName(const char* name, std::int32_t kind) {
  m_nKind = kind;
  const auto port = NumberBehind("USB", name);
  return port ? OpenByPort(*port, ReaderKindTyUsb, 9600) : 0;
}

std::int32_t CTYUSBReaderTool::OpenByPort(std::int32_t port, std::int32_t kind, std::int32_t) {
  m_nKind = kind;
  m_tykeyint.Bind();
  if (m_tykeyint->TYKey_OpenTYKey == nullptr) return 0;
  std::int64_t handle = 0;
  if (m_tykeyint->TYKey_OpenTYKey(FromZero(port), &handle) != kSuccess) return 0;
  m_nPort = FromZero(port);
  SetName(UsbName(m_nPort));
  m_nHandle = static_cast<std::int32_t>(handle);
  m_nKind = ReaderKindTyUsb;
  return 1;
}

std::int32_t CTYUSBReaderTool::Close() {
  if (m_nHandle == -1) return 1;
  const std::int32_t handle = std::exchange(m_nHandle, -1);
  if (m_tykeyint->TYKey_CloseTYKey != nullptr) m_tykeyint->TYKey_CloseTYKey(handle);
  return 1;
}

std::int32_t CTYUSBReaderTool::ListReaders(std::int32_t, ReaderInfo* list, std::int32_t,
                                           std::int32_t max) {
  m_tykeyint.Bind();
  if (m_tykeyint->TYKey_Change == nullptr || m_tykeyint->TYKey_Status == nullptr) return 0;
  std::uint8_t present[kKeys] = {};
  try {
    m_tykeyint->TYKey_Change();
    m_tykeyint->TYKey_Status(present);
  } catch (...) {
    // What the table holds by now is listed all the same.
  }
  std::int32_t written = 0;
  for (std::int32_t port = 0; port < kKeys && (max <= 0 || written < max); ++port) {
    if (present[port] != 0)
      WriteRecord(list[written++], ReaderKindTyUsb, true, port, UsbName(port));
  }
  return written;
}

void CTYUSBReaderTool::SetSlot(std::uint32_t slot) { m_nSlot = static_cast<std::int32_t>(slot); }

std::int32_t CTYUSBReaderTool::ResetCard(std::uint8_t* atr, std::uint32_t* atrLen) {
  if (m_nHandle == -1 || m_tykeyint->TYKey_ColdReset == nullptr) return 0;
  Reply answer{};
  answer.length = kReplySize;
  m_wStatus = m_tykeyint->TYKey_ColdReset(m_nHandle, &answer.length, answer.octets.data());
  return m_wStatus == kSuccess ? GiveAtr(answer, atr, atrLen) : 0;
}

std::int32_t CTYUSBReaderTool::Transmit(const std::uint8_t* cmd, std::uint32_t cmdLen,
                                        std::uint8_t* resp, std::uint32_t* respLen) {
  if (m_tykeyint->TYKey_SendCommand == nullptr) return 0;
  return ExchangeWithStatusWord(kRules, cmd, cmdLen, resp, respLen);
}

bool CTYUSBReaderTool::Exchange(const std::uint8_t* command, std::uint32_t length, Reply& reply) {
  reply.length = kReplySize;
  reply.statusWord =
      m_tykeyint->TYKey_SendCommand(m_nHandle, length, command, &reply.length, reply.octets.data());
  return true;
}

}  // namespace orvane
