#include <string>
#include <utility>

#include "platform/library.h"
#include "readers/drivers.h"
#include "readers/ports.h"

namespace orvane {
namespace {

struct TyCom : platform::Library {
  TyCom() : Library("tyreader.dll") {}

  EntryPoint<std::int32_t(std::int32_t baud, std::int32_t port)> TY_Open{*this, "TY_Open"};
  EntryPoint<std::int32_t(std::int64_t handle)> TY_Close{*this, "TY_Close"};
  EntryPoint<std::uint16_t(std::int64_t handle, std::uint8_t slot, std::uint16_t* length,
                           std::uint8_t* buffer)>
      TY_Dreset{*this, "TY_Dreset"};
  EntryPoint<std::uint16_t(std::int64_t handle, std::uint8_t slot, std::uint32_t length,
                           const std::uint8_t* command, std::uint32_t* responseLength,
                           std::uint8_t* response)>
      TY_Dtsi_api{*this, "TY_Dtsi_api"};

  // Bound, never called.
  EntryPoint<void()> TY_DCardExist{*this, "TY_DCardExist"};
};

constexpr std::int32_t kBaud = 57600;
constexpr std::uint16_t kSuccess = 0x9000;

constexpr ExchangeRules kRules{
    .source = StatusWordSource::kLibraryResult, .copy = CopyRule::kWhole, .moreDataUnwanted = 1};

constexpr PortListing kPorts{
    .kind = ReaderKindTyCom, .name = ComName, .most = 0, .honoursMax = true};

// TY readers on a serial port. The library returns the status word as its result; the response
// holds only the data.
class CTYCOMReaderTool final : public CReaderToolBase {
 public:
  CTYCOMReaderTool() : CReaderToolBase(&kRules, &kPorts) {}

  std::int32_t OpenByName(const char* name, std::int32_t kind) override {
    m_nKind = kind;
    return OpenByPortBehind("COM", name, kind);
  }

  std::int32_t OpenByPort(std::int32_t port, std::int32_t kind, std::int32_t) override {
    m_nKind = kind;
    m_tyreader.Bind();
    if (!m_tyreader.TY_Open) return 0;
    m_nHandle = m_tyreader.TY_Open(kBaud, FromZero(port));
    if (m_nHandle == -1) return 0;
    m_nPort = FromZero(port);
    SetName(ComName(port));
    m_nKind = ReaderKindTyCom;
    m_nOpenFlag = 1;
    return 1;
  }

  std::int32_t Close() override {
    if (m_nHandle == -1) return 1;
    const std::int32_t handle = std::exchange(m_nHandle, -1);
    if (m_tyreader.TY_Close) m_tyreader.TY_Close(handle);
    return 1;
  }

  std::int32_t ResetCard(std::uint8_t* atr, std::uint32_t* atrLen) override {
    if (m_nHandle == -1 || !m_tyreader.TY_Dreset) return 0;
    Response answer{};
    std::uint16_t length = kResponseSize;
    m_wStatus = m_tyreader.TY_Dreset(m_nHandle, static_cast<std::uint8_t>(m_nSlot), &length,
                                     answer.octets.data());
    answer.length = length;
    return m_wStatus == kSuccess ? GiveAtr(answer, atr, atrLen) : 0;
  }

 private:
  bool Exchange(const std::uint8_t* command, std::uint32_t length, Response& response) override {
    if (!m_tyreader.TY_Dtsi_api) return false;
    response.length = kResponseSize;
    response.statusWord =
        m_tyreader.TY_Dtsi_api(m_nHandle, static_cast<std::uint8_t>(m_nSlot), length, command,
                               &response.length, response.octets.data());
    return true;
  }

  TyCom m_tyreader;
};

}  // namespace

std::unique_ptr<CReaderToolBase> MakeTyComReaderTool() {
  return std::make_unique<CTYCOMReaderTool>();
}

}  // namespace orvane
