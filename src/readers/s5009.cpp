#include <algorithm>
#include <string>

#include "platform/library.h"
#include "readers/drivers.h"
#include "readers/ports.h"
#include "util/hex.h"

namespace orvane {
namespace {

struct S5009 : platform::Library {
  S5009() : Library("S5009.dll") {}

  EntryPoint<std::int32_t(std::int32_t port)> InitCOM{*this, "InitCOM"};
  EntryPoint<std::int16_t(std::int32_t port)> CloseCOM{*this, "CloseCOM"};
  // Lengths are in characters.
  EntryPoint<std::int32_t(std::int32_t slot, const char* command, std::int32_t length,
                          char* response, std::uint32_t* responseLength)>
      ExchangeAPDU{*this, "ExchangeAPDU"};
  EntryPoint<std::int32_t(std::uint8_t* buffer, std::uint32_t* length)> Mifare_SearchCard{
      *this, "Mifare_SearchCard"};
  EntryPoint<std::int32_t(std::uint8_t* buffer, std::uint32_t* length)> Mifare_GetATS{
      *this, "Mifare_GetATS"};

  // Bound, never called.
  EntryPoint<void()> CardPowerUP{*this, "CardPowerUP"};
  EntryPoint<void()> CardPowerDown{*this, "CardPowerDown"};
  EntryPoint<void()> Mifare_CardTypeSet{*this, "Mifare_CardTypeSet"};
  EntryPoint<void()> Mifare_SlectCardType{*this, "Mifare_SlectCardType"};
  EntryPoint<void()> Mifare_ReadBlock{*this, "Mifare_ReadBlock"};
  EntryPoint<void()> Mifare_WriteBlock{*this, "Mifare_WriteBlock"};
  EntryPoint<void()> Mifare_WriteAccess{*this, "Mifare_WriteAccess"};
  EntryPoint<void()> Mifare_Decrement{*this, "Mifare_Decrement"};
  EntryPoint<void()> Mifare_Increment{*this, "Mifare_Increment"};
  EntryPoint<void()> Mifare_BlockCopy{*this, "Mifare_BlockCopy"};
};

constexpr std::uint32_t kLongestCommand = 133;
constexpr std::size_t kResponseTextSize = 256;

constexpr ExchangeRules kRules{.source = StatusWordSource::kResponseEnd,
                               .copy = CopyRule::kWhole,
                               .moreDataUnwanted = 1,
                               .longestCommand = kLongestCommand};

constexpr PortListing kPorts{
    .kind = ReaderKindS5009, .name = ComName, .most = 0, .honoursMax = true};

// The S5009 reader, whose library takes and gives hexadecimal text. Its two kinds differ in what
// ResetCard asks for.
class CS5009ReaderTool final : public CReaderToolBase {
 public:
  CS5009ReaderTool() : CReaderToolBase(&kRules, &kPorts) { m_nSlot = 3; }

  std::int32_t OpenByName(const char* name, std::int32_t kind) override {
    return OpenByPortBehind("COM", name, kind);
  }

  std::int32_t OpenByPort(std::int32_t port, std::int32_t kind, std::int32_t) override {
    m_s5009.Bind();
    if (kind == ReaderKindS5009Ats) m_nUseAts = 1;
    if (!m_s5009.InitCOM) return 0;
    m_nHandle = m_s5009.InitCOM(port);
    if (m_nHandle != 0) return 0;
    m_nPort = port;
    m_nKind = kind;
    SetName("S5009 PORT " + std::to_string(port));
    return 1;
  }

  std::int32_t Close() override {
    if (m_nHandle == -1) return 1;
    m_nHandle = -1;
    if (m_s5009.CloseCOM) {
      m_wStatus = static_cast<std::uint16_t>(m_s5009.CloseCOM(m_nPort));
      if (m_wStatus == 0) SetName("S5009");
    }
    return 1;
  }

  std::int32_t ResetCard(std::uint8_t* atr, std::uint32_t* atrLen) override {
    if (m_nHandle == -1) return 0;
    const auto& read = m_nUseAts != 0 ? m_s5009.Mifare_GetATS : m_s5009.Mifare_SearchCard;
    Response answer{};
    if (!read || read(answer.octets.data(), &answer.length) < 0) return 0;
    return GiveAtr(answer, atr, atrLen);
  }

 private:
  bool Exchange(const std::uint8_t* command, std::uint32_t length, Response& response) override {
    if (!m_s5009.ExchangeAPDU) return false;
    char text[2 * kLongestCommand + 1] = {};
    EncodeHex(command, length, text);
    char responseText[kResponseTextSize] = {};
    std::uint32_t characters = 0;
    const std::int32_t result = m_s5009.ExchangeAPDU(
        m_nSlot, text, static_cast<std::int32_t>(2 * length), responseText, &characters);
    if (result != 0 || characters > sizeof responseText) {
      m_wStatus = 0;
      return false;
    }
    DecodeHex({responseText, characters}, response.octets.data());
    response.length = characters / 2;
    return true;
  }

  std::int32_t m_nUseAts = 0;  // 1 makes ResetCard ask for the ATS
  S5009 m_s5009;
};

}  // namespace

std::unique_ptr<CReaderToolBase> MakeS5009ReaderTool() {
  return std::make_unique<CS5009ReaderTool>();
}

}  // namespace orvane
