#include <cstring>

#include "platform/library.h"
#include "readers/drivers.h"
#include "readers/ports.h"

namespace orvane {
namespace {

// Loaded from this library's own folder only.
struct Wd : platform::Library {
  Wd() : Library("wdcrwx.dll", platform::LoadModuleFromOwnFolder) {}

  EntryPoint<std::int32_t(const char* name, std::int32_t zero1, std::int32_t zero2)> CT_open{
      *this, "CT_open"};
  EntryPoint<std::int32_t(std::int64_t handle)> CT_close{*this, "CT_close"};
  EntryPoint<std::uint16_t(std::int64_t handle, std::uint8_t length, const std::uint8_t* command,
                           std::uint32_t* responseLength, std::uint8_t* response)>
      ICC_tsi_api{*this, "ICC_tsi_api"};
  EntryPoint<std::int32_t(std::int64_t handle, std::uint32_t address)> ICC_set_NAD{*this,
                                                                                   "ICC_set_NAD"};

  // Bound, never called.
  EntryPoint<void()> ICC_reset{*this, "ICC_reset"};
};

constexpr std::uint32_t kNodeAddress = 21;
constexpr std::uint16_t kCallFailed = 0xFFFF;
constexpr std::uint16_t kNoExchange = 0x6FF0;

constexpr ExchangeRules kRules{.source = StatusWordSource::kLibraryResult,
                               .copy = CopyRule::kWhole,
                               .moreDataUnwanted = 1,
                               .confirmsSecondEnd = true,
                               .longestCommand = 255};

// The WD reader; there is only one. Reset is an exchange whose response is the ATR.
class CWDReaderTool final : public CReaderToolBase {
 public:
  CWDReaderTool() : CReaderToolBase(&kRules) { m_wdcrwx.Bind(); }

  std::int32_t OpenByName(const char* name, std::int32_t kind) override {
    m_nKind = kind;
    m_wdcrwx.Bind();
    if (std::strlen(name) < 2) return 0;
    m_nHandle = 0;
    if (!m_wdcrwx.CT_open) return 0;
    m_nHandle = m_wdcrwx.CT_open(name + 2, 0, 0);
    if (m_nHandle <= 0) return 0;
    SetSlot(kNodeAddress);
    return 1;
  }

  std::int32_t Close() override {
    if (m_nHandle == -1) return 1;
    if (!m_wdcrwx.CT_close || m_wdcrwx.CT_close(m_nHandle) != 0) return 0;
    SetName("WD");
    m_nHandle = -1;
    return 1;
  }

  std::int32_t ListReaders(std::int32_t, ReaderInfo* list, std::int32_t, std::int32_t) override {
    WriteRecord(list[0], ReaderKindWd, false, 0, "WDUSB1");
    return 1;
  }

  void SetSlot(std::uint32_t slot) override {
    CReaderToolBase::SetSlot(slot);
    if (m_wdcrwx.ICC_set_NAD) m_wdcrwx.ICC_set_NAD(m_nHandle, slot);
  }

  std::int32_t ResetCard(std::uint8_t* atr, std::uint32_t* atrLen) override {
    constexpr std::uint8_t kReset[] = {0x00, 0x12, 0x00, 0x00, 0x00};
    return m_nHandle != -1 ? Transmit(kReset, sizeof kReset, atr, atrLen) : 0;
  }

 private:
  bool Exchange(const std::uint8_t* command, std::uint32_t length, Response& response) override {
    if (!m_wdcrwx.ICC_tsi_api) return false;
    m_wStatus = m_wdcrwx.ICC_tsi_api(m_nHandle, static_cast<std::uint8_t>(length), command,
                                     &response.length, response.octets.data());
    response.statusWord = m_wStatus;
    return m_wStatus != kCallFailed && m_wStatus != kNoExchange;
  }

  Wd m_wdcrwx;
};

}  // namespace

std::unique_ptr<CReaderToolBase> MakeWdReaderTool() { return std::make_unique<CWDReaderTool>(); }

}  // namespace orvane
