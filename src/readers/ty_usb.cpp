#include <string>
#include <utility>

#include "platform/library.h"
#include "readers/drivers.h"
#include "readers/ports.h"

namespace orvane {
namespace {

struct TyUsb : platform::Library {
  TyUsb() : Library("tykeyint.dll") {}

  EntryPoint<std::int32_t()> TYKey_Change{*this, "TYKey_Change"};
  EntryPoint<std::int32_t(std::uint8_t* table)> TYKey_Status{*this, "TYKey_Status"};
  EntryPoint<std::uint16_t(std::int32_t index, std::int64_t* handle)> TYKey_OpenTYKey{
      *this, "TYKey_OpenTYKey"};
  EntryPoint<std::uint16_t(std::int64_t handle)> TYKey_CloseTYKey{*this, "TYKey_CloseTYKey"};
  EntryPoint<std::uint16_t(std::int64_t handle, std::uint32_t* length, std::uint8_t* buffer)>
      TYKey_ColdReset{*this, "TYKey_ColdReset"};
  EntryPoint<std::uint16_t(std::int64_t handle, std::uint32_t length, const std::uint8_t* command,
                           std::uint32_t* responseLength, std::uint8_t* response)>
      TYKey_SendCommand{*this, "TYKey_SendCommand"};

  // Bound, never called.
  EntryPoint<void()> TYKey_GetATR{*this, "TYKey_GetATR"};
  EntryPoint<void()> TYKey_CardExist{*this, "TYKey_CardExist"};
  EntryPoint<void()> TYKey_KeyExist{*this, "TYKey_KeyExist"};
  EntryPoint<void()> TYKey_BeginTransEx{*this, "TYKey_BeginTransEx"};
  EntryPoint<void()> TYKey_EndTransEx{*this, "TYKey_EndTransEx"};
};

constexpr std::int32_t kKeys = 16;
constexpr std::uint16_t kSuccess = 0x9000;

constexpr ExchangeRules kRules{.source = StatusWordSource::kLibraryResult,
                               .copy = CopyRule::kWhole,
                               .moreDataUnwanted = 1,
                               .showsSecondStatus = true};

std::string UsbName(std::int32_t port) { return "USB" + std::to_string(port); }

// TY readers in USB keys. The library returns the status word as its result; the response holds
// only the data.
class CTYUSBReaderTool final : public CReaderToolBase {
 public:
  CTYUSBReaderTool() : CReaderToolBase(&kRules) {}

  std::int32_t OpenByName(const char* name, std::int32_t kind) override {
    m_nKind = kind;
    return OpenByPortBehind("USB", name, ReaderKindTyUsb);
  }

  std::int32_t OpenByPort(std::int32_t port, std::int32_t kind, std::int32_t) override {
    m_nKind = kind;
    m_tykeyint.Bind();
    if (!m_tykeyint.TYKey_OpenTYKey) return 0;
    std::int64_t handle = 0;
    if (m_tykeyint.TYKey_OpenTYKey(FromZero(port), &handle) != kSuccess) return 0;
    m_nPort = FromZero(port);
    SetName(UsbName(m_nPort));
    m_nHandle = static_cast<std::int32_t>(handle);
    m_nKind = ReaderKindTyUsb;
    return 1;
  }

  std::int32_t Close() override {
    if (m_nHandle == -1) return 1;
    const std::int32_t handle = std::exchange(m_nHandle, -1);
    if (m_tykeyint.TYKey_CloseTYKey) m_tykeyint.TYKey_CloseTYKey(handle);
    return 1;
  }

  std::int32_t ListReaders(std::int32_t, ReaderInfo* list, std::int32_t,
                           std::int32_t max) override {
    m_tykeyint.Bind();
    if (!m_tykeyint.TYKey_Change || !m_tykeyint.TYKey_Status) return 0;
    std::uint8_t present[kKeys] = {};
    try {
      m_tykeyint.TYKey_Change();
      m_tykeyint.TYKey_Status(present);
    } catch (...) {
      // After an exception, what the table holds so far is still listed.
    }
    std::int32_t written = 0;
    for (std::int32_t port = 0; port < kKeys && (max <= 0 || written < max); ++port) {
      if (present[port] == 0) continue;
      WriteRecord(list[written++], ReaderKindTyUsb, true, port, UsbName(port));
    }
    return written;
  }

  std::int32_t ResetCard(std::uint8_t* atr, std::uint32_t* atrLen) override {
    if (m_nHandle == -1 || !m_tykeyint.TYKey_ColdReset) return 0;
    Response answer{};
    answer.length = kResponseSize;
    m_wStatus = m_tykeyint.TYKey_ColdReset(m_nHandle, &answer.length, answer.octets.data());
    return m_wStatus == kSuccess ? GiveAtr(answer, atr, atrLen) : 0;
  }

 private:
  bool Exchange(const std::uint8_t* command, std::uint32_t length, Response& response) override {
    if (!m_tykeyint.TYKey_SendCommand) return false;
    response.length = kResponseSize;
    response.statusWord = m_tykeyint.TYKey_SendCommand(m_nHandle, length, command, &response.length,
                                                       response.octets.data());
    return true;
  }

  TyUsb m_tykeyint;
};

}  // namespace

std::unique_ptr<CReaderToolBase> MakeTyUsbReaderTool() {
  return std::make_unique<CTYUSBReaderTool>();
}

}  // namespace orvane
