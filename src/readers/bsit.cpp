#include <string>
#include <utility>

#include "platform/library.h"
#include "readers/drivers.h"
#include "readers/ports.h"

namespace orvane {
namespace {

struct Bsit : platform::Library {
  Bsit() : Library("STJZZ_BSIT.dll") {}

  EntryPoint<std::int32_t()> bsit_gethidlist{*this, "bsit_gethidlist"};
  EntryPoint<std::int32_t(std::int32_t zero1, std::uint16_t index, std::int32_t zero2)>
      bsit_openHID{*this, "bsit_openHID"};
  EntryPoint<std::int32_t(std::int64_t handle)> bsit_CloseHID{*this, "bsit_CloseHID"};
  EntryPoint<std::int32_t(std::int64_t handle, std::uint32_t slot)> bsit_SetSlot{*this,
                                                                                 "bsit_SetSlot"};
  EntryPoint<std::int32_t(std::int64_t handle, std::uint8_t* buffer, std::uint32_t* length)>
      bsit_ResetCard{*this, "bsit_ResetCard"};
  EntryPoint<std::int32_t(std::int64_t handle, std::uint32_t length, const std::uint8_t* command,
                          std::uint32_t* responseLength, std::uint8_t* response)>
      bsit_SendApdu{*this, "bsit_SendApdu"};

  // Bound, never called.
  EntryPoint<void()> bsit_GetCardState{*this, "bsit_GetCardState"};
  EntryPoint<void()> bsit_CloseCard{*this, "bsit_CloseCard"};
};

constexpr ExchangeRules kRules{
    .source = StatusWordSource::kResponseEnd, .copy = CopyRule::kStrip, .moreDataUnwanted = 0};

constexpr char kMarker[] = "BSIT:";

std::string BsitName(std::int32_t port) { return kMarker + std::to_string(port); }

constexpr PortListing kPorts{
    .kind = ReaderKindBsit, .name = BsitName, .most = 16, .honoursMax = false};

// BSIT readers. The library may refuse the card slot.
class CBSITReaderTool final : public CReaderToolBase {
 public:
  CBSITReaderTool() : CReaderToolBase(&kRules, &kPorts) {}

  std::int32_t OpenByName(const char* name, std::int32_t kind) override {
    m_nKind = kind;
    return OpenByPortBehind(kMarker, name, kind);
  }

  std::int32_t OpenByPort(std::int32_t port, std::int32_t, std::int32_t) override {
    m_nPort = 0;
    m_bsit.Bind();
    if (!m_bsit.bsit_openHID) return 0;
    m_nHandle = m_bsit.bsit_openHID(0, static_cast<std::uint16_t>(FromZero(port)), 0);
    if (m_nHandle == -1) return 0;
    m_nPort = FromZero(port);
    SetName(BsitName(port));
    m_nKind = ReaderKindBsit;
    SetSlot(0);
    return 1;
  }

  std::int32_t Close() override {
    if (m_nHandle == -1) return 1;
    const std::int32_t handle = std::exchange(m_nHandle, -1);
    if (m_bsit.bsit_CloseHID) m_bsit.bsit_CloseHID(handle);
    SetName(kMarker);
    return 1;
  }

  std::int32_t ListReaders(std::int32_t kind, ReaderInfo* list, std::int32_t,
                           std::int32_t max) override {
    m_bsit.Bind();
    if (!m_bsit.bsit_gethidlist) return 0;
    return CReaderToolBase::ListReaders(kind, list, m_bsit.bsit_gethidlist(), max);
  }

  void SetSlot(std::uint32_t slot) override {
    m_bsit.Bind();
    if (m_bsit.bsit_SetSlot && m_bsit.bsit_SetSlot(m_nHandle, slot) == 0) {
      CReaderToolBase::SetSlot(slot);
    }
  }

  std::int32_t ResetCard(std::uint8_t* atr, std::uint32_t* atrLen) override {
    if (m_nHandle == -1 || !m_bsit.bsit_ResetCard) return 0;
    Response answer{};
    if (m_bsit.bsit_ResetCard(m_nHandle, answer.octets.data(), &answer.length) != 0) return 0;
    return GiveAtr(answer, atr, atrLen);
  }

 private:
  bool Exchange(const std::uint8_t* command, std::uint32_t length, Response& response) override {
    return m_bsit.bsit_SendApdu &&
           m_bsit.bsit_SendApdu(m_nHandle, length, command, &response.length,
                                response.octets.data()) == 0;
  }

  Bsit m_bsit;
};

}  // namespace

std::unique_ptr<CReaderToolBase> MakeBsitReaderTool() {
  return std::make_unique<CBSITReaderTool>();
}

}  // namespace orvane
