#include <algorithm>
#include <array>
#include <cstring>
#include <string>

#include "platform/library.h"
#include "readers/drivers.h"
#include "readers/ports.h"

namespace orvane {
namespace {

struct Icr : platform::Library {
  Icr() : Library("sdtapi.dll") {}

  EntryPoint<std::int32_t(std::int32_t port)> SDT_OpenPort{*this, "SDT_OpenPort"};
  EntryPoint<std::int32_t(std::int32_t port)> SDT_ClosePort{*this, "SDT_ClosePort"};
  EntryPoint<std::int32_t(std::int32_t port, std::uint8_t* buffer, std::int32_t ifOpen)>
      SDT_StartFindIDCard{*this, "SDT_StartFindIDCard"};
  EntryPoint<std::int32_t(std::int32_t port, std::uint8_t* buffer, std::int32_t ifOpen)>
      SDT_SelectIDCard{*this, "SDT_SelectIDCard"};
  EntryPoint<std::int32_t(std::int32_t port, std::uint8_t* message1, std::uint32_t* length1,
                          std::uint8_t* message2, std::uint32_t* length2, std::int32_t ifOpen)>
      SDT_ReadBaseMsg{*this, "SDT_ReadBaseMsg"};
};

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

// A reader of identity cards. It exchanges no commands. ResetCard finds and selects a card;
// Transmit reads the card's base message and does not give it to the host.
class CICRTool final : public CReaderToolBase {
 public:
  CICRTool() : CReaderToolBase(nullptr, &kPorts) { m_sdtapi.Bind(); }

  std::int32_t OpenByName(const char* name, std::int32_t kind) override {
    m_nKind = kind;
    if (std::strstr(name, kUsbName) != nullptr) {
      m_nIcrPort = kUsbPort;
      // The first call only wakes the reader; its result does not matter.
      Open();
      if (Open() == 1) return 1;
    }
    const auto port = NumberBehind("COM", name);
    if (!port) return 0;
    m_nIcrPort = *port;
    return Open();
  }

  std::int32_t Close() override {
    return m_sdtapi.SDT_ClosePort && m_sdtapi.SDT_ClosePort(m_nIcrPort) == kDone ? 1 : 0;
  }

  std::int32_t ResetCard(std::uint8_t*, std::uint32_t*) override {
    if (!m_sdtapi.SDT_StartFindIDCard || !m_sdtapi.SDT_SelectIDCard) return 0;
    std::uint8_t found[256] = {};
    std::uint8_t selected[256] = {};
    m_sdtapi.SDT_StartFindIDCard(m_nIcrPort, found, m_nIfOpen);
    const std::int32_t find = m_sdtapi.SDT_StartFindIDCard(m_nIcrPort, found, m_nIfOpen);
    const std::int32_t select = m_sdtapi.SDT_SelectIDCard(m_nIcrPort, selected, m_nIfOpen);
    return find == kCardFound && select == kDone ? 1 : 0;
  }

  std::int32_t Transmit(const std::uint8_t* cmd, std::uint32_t cmdLen, std::uint8_t*,
                        std::uint32_t*) override {
    if (!m_sdtapi.SDT_ReadBaseMsg) return 0;
    // The library overwrites the command with its first message and does not know the size of the
    // buffer. So it gets a copy with more room than any message needs.
    std::array<std::uint8_t, kMessageSize> first{};
    std::array<std::uint8_t, kMessageSize> second{};
    std::copy_n(cmd, std::min<std::size_t>(cmdLen, first.size()), first.begin());
    std::uint32_t firstLength = 0;
    std::uint32_t secondLength = 0;
    const std::int32_t result = m_sdtapi.SDT_ReadBaseMsg(m_nIcrPort, first.data(), &firstLength,
                                                         second.data(), &secondLength, m_nIfOpen);
    return result == kDone ? 1 : 0;
  }

 private:
  std::int32_t Open() {
    return m_sdtapi.SDT_OpenPort && m_sdtapi.SDT_OpenPort(m_nIcrPort) == kDone ? 1 : 0;
  }

  std::int32_t m_nIcrPort = 0;
  std::int32_t m_nIfOpen = 0;
  Icr m_sdtapi;
};

}  // namespace

std::unique_ptr<CReaderToolBase> MakeIcrTool() { return std::make_unique<CICRTool>(); }

}  // namespace orvane
