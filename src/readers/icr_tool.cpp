#include "readers/icr_tool.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

#include "readers/port_list.h"
#include "readers/reader_name.h"

namespace orvane {
namespace {

#define ENTRY(name) ORVANE_ENTRY_POINT(IcrEntryPoints, name)

constexpr platform::EntryPoint kEntryPoints[] = {
    ENTRY(SDT_OpenPort),     ENTRY(SDT_ClosePort),   ENTRY(SDT_StartFindIDCard),
    ENTRY(SDT_SelectIDCard), ENTRY(SDT_ReadBaseMsg),
};

#undef ENTRY

constexpr std::int32_t kDone = 0x90;
constexpr std::int32_t kCardFound = 0x9F;
constexpr std::int32_t kUsbPort = 1001;
constexpr char kUsbName[] = "ICR-COM1001(ICRUSB)";
constexpr std::size_t kMessageSize = 40960;

std::string IcrName(std::int32_t port) { return "ICR-" + ComName(port); }

constexpr PortListing kPorts{.kind = ReaderKindIcr,
                             .name = IcrName,
                             .most = 0,
                             .honoursMax = true,
                             .usbPort = kUsbPort,
                             .usbName = kUsbName};

}  // namespace

std::span<const platform::EntryPoint> IcrEntryPoints::EntryPoints() { return kEntryPoints; }

CICRTool::CICRTool() { m_sdtapi.Bind(); }

CICRTool::~CICRTool() { CloseQuietly(*this); }

std::int32_t CICRTool::OpenByName(const char* name, std::int32_t kind) {
  m_nKind = kind;
  if (std::strstr(name, kUsbName) != nullptr) {
    m_nIcrPort = kUsbPort;
    // The first call wakes the reader, whatever it says.
    Open();
    if (Open() == 1) return 1;
  }
  const auto port = NumberBehind("COM", name);
  if (!port) return 0;
  m_nIcrPort = *port;
  return Open();
}

std::int32_t CICRTool::Open() {
  return m_sdtapi->SDT_OpenPort != nullptr && m_sdtapi->SDT_OpenPort(m_nIcrPort) == kDone ? 1 : 0;
}

std::int32_t CICRTool::Close() {
  return m_sdtapi->SDT_ClosePort != nullptr && m_sdtapi->SDT_ClosePort(m_nIcrPort) == kDone ? 1 : 0;
}

std::int32_t CICRTool::ListReaders(std::int32_t, ReaderInfo* list, std::int32_t count,
                                   std::int32_t max) {
  return ListPorts(kPorts, list, count, max);
}

std::int32_t CICRTool::ResetCard(std::uint8_t*, std::uint32_t*) {
  if (m_sdtapi->SDT_StartFindIDCard == nullptr || m_sdtapi->SDT_SelectIDCard == nullptr) return 0;
  std::uint8_t found[256] = {};
  std::uint8_t selected[256] = {};
  m_sdtapi->SDT_StartFindIDCard(m_nIcrPort, found, m_nIfOpen);
  const std::int32_t find = m_sdtapi->SDT_StartFindIDCard(m_nIcrPort, found, m_nIfOpen);
  const std::int32_t select = m_sdtapi->SDT_SelectIDCard(m_nIcrPort, selected, m_nIfOpen);
  return find == kCardFound && select == kDone ? 1 : 0;
}

std::int32_t CICRTool::Transmit(const std::uint8_t* cmd, std::uint32_t cmdLen, std::uint8_t*,
                                std::uint32_t*) {
  if (m_sdtapi->SDT_ReadBaseMsg == nullptr) return 0;
  // The library writes its first message over the command and is not told where that ends: it gets
  // a copy with more room than any message needs.
  std::array<std::uint8_t, kMessageSize> first{};
  std::array<std::uint8_t, kMessageSize> second{};
  std::copy_n(cmd, std::min<std::size_t>(cmdLen, first.size()), first.begin());
  std::uint32_t firstLength = 0;
  std::uint32_t secondLength = 0;
  return m_sdtapi->SDT_ReadBaseMsg(m_nIcrPort, first.data(), &firstLength, second.data(),
                                   &secondLength, m_nIfOpen) == kDone
             ? 1
             : 0;
}

}  // namespace orvane
