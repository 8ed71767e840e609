#include <chrono>
#include <cstring>
#include <string>
#include <thread>
#include <utility>

#include "platform/library.h"
#include "readers/drivers.h"
#include "readers/ports.h"
#include "util/hex.h"

namespace orvane {
namespace {

struct D8 : platform::Library {
  D8() : Library("dcrf32.dll") {}

  EntryPoint<std::int64_t(std::int16_t port, std::int32_t baud)> dc_init{*this, "dc_init"};
  EntryPoint<std::int16_t(std::int64_t handle)> dc_exit{*this, "dc_exit"};
  EntryPoint<std::int16_t(std::int64_t handle, std::uint8_t type)> dc_config_card{*this,
                                                                                  "dc_config_card"};
  EntryPoint<std::int16_t(std::int64_t handle, std::uint8_t slot)> dc_setcpu{*this, "dc_setcpu"};
  EntryPoint<std::int16_t(std::int64_t handle, std::uint16_t milliseconds)> dc_reset{*this,
                                                                                     "dc_reset"};
  EntryPoint<std::int16_t(std::int64_t handle, std::uint8_t mode, std::uint32_t* tagType)>
      dc_request{*this, "dc_request"};
  EntryPoint<std::int16_t(std::int64_t handle, std::uint8_t zero, std::uint32_t* cardNumber)>
      dc_anticoll{*this, "dc_anticoll"};
  EntryPoint<std::int16_t(std::int64_t handle, std::uint32_t cardNumber, std::uint32_t* size)>
      dc_select{*this, "dc_select"};
  EntryPoint<std::int16_t(std::int64_t handle, std::uint8_t* length, char* text)> dc_pro_resethex{
      *this, "dc_pro_resethex"};
  EntryPoint<std::int16_t(std::int64_t handle, std::uint8_t* length, char* text)> dc_cpureset_hex{
      *this, "dc_cpureset_hex"};
  EntryPoint<std::int16_t(std::int64_t handle, std::uint8_t length, const std::uint8_t* command,
                          std::uint32_t* responseLength, std::uint8_t* response, std::uint8_t ten,
                          std::uint8_t fiftySix)>
      dc_pro_commandlink{*this, "dc_pro_commandlink"};
  EntryPoint<std::int16_t(std::int64_t handle, std::uint8_t length, const std::uint8_t* command,
                          std::uint32_t* responseLength, std::uint8_t* response)>
      dc_cpuapdu{*this, "dc_cpuapdu"};
};

constexpr std::int32_t kUsbPort = 100;
constexpr char kUsbName[] = "COM100(D8USB)";
constexpr std::int32_t kBaud = 115200;
constexpr std::uint8_t kCardTypeA = 'A';
constexpr std::size_t kResetTextSize = 256;

constexpr ExchangeRules kRules{.source = StatusWordSource::kResponseEnd,
                               .copy = CopyRule::kStrip,
                               .moreDataUnwanted = 0,
                               .longestCommand = 255};

constexpr PortListing kPorts{.kind = ReaderKindD8,
                             .name = ComName,
                             .most = 16,
                             .honoursMax = false,
                             .usbPort = kUsbPort,
                             .usbName = kUsbName};

// D8 readers, on a serial port or on USB (port 100). Card slot 0 is the contactless field, any
// other slot a contact slot. m_wStatus holds each result of the library.
class CD8ReaderTool final : public CReaderToolBase {
 public:
  CD8ReaderTool() : CReaderToolBase(&kRules, &kPorts) {}

  std::int32_t OpenByName(const char* name, std::int32_t kind) override {
    m_nKind = kind;
    if (std::strstr(name, kUsbName) != nullptr) return OpenByPort(kUsbPort, kind, 9600);
    return OpenByPortBehind("COM", name, kind);
  }

  std::int32_t OpenByPort(std::int32_t port, std::int32_t, std::int32_t) override {
    const std::int32_t libraryPort = port == kUsbPort ? port : FromZero(port);
    m_dcrf32.Bind();
    if (!m_dcrf32.dc_init) return 0;
    m_nHandle =
        static_cast<std::int32_t>(m_dcrf32.dc_init(static_cast<std::int16_t>(libraryPort), kBaud));
    if (m_nHandle <= 0) return 0;
    m_nPort = libraryPort;
    SetName("D8 PORT " + std::to_string(std::int64_t{libraryPort} + 1));
    m_nKind = ReaderKindD8;
    return Succeeds(m_dcrf32.dc_config_card, m_nHandle, kCardTypeA) ? 1 : 0;
  }

  std::int32_t Close() override {
    if (m_nHandle == -1) return 1;
    const std::int32_t handle = std::exchange(m_nHandle, -1);
    if (Succeeds(m_dcrf32.dc_exit, handle)) SetName("D8");
    return 1;
  }

  void SetSlot(std::uint32_t slot) override {
    CReaderToolBase::SetSlot(slot);
    if (slot < 12 || slot > 15) return;
    Succeeds(m_dcrf32.dc_setcpu, m_nHandle, static_cast<std::uint8_t>(slot));
  }

  std::int32_t ResetCard(std::uint8_t* atr, std::uint32_t* atrLen) override {
    if (m_nHandle == -1) return 0;
    std::uint8_t length = 0;
    char text[kResetTextSize] = {};
    const bool reset = m_nSlot == 0 ? ResetContactless(length, text)
                                    : Succeeds(m_dcrf32.dc_cpureset_hex, m_nHandle, &length, text);
    const std::size_t digits = std::size_t{2} * length;
    if (!reset || digits > sizeof text) return 0;
    Response answer{};
    answer.length = length;
    DecodeHex({text, digits}, answer.octets.data());
    return GiveAtr(answer, atr, atrLen);
  }

 private:
  bool Exchange(const std::uint8_t* command, std::uint32_t length, Response& response) override {
    const auto octets = static_cast<std::uint8_t>(length);
    return m_nSlot == 0
               ? Succeeds(m_dcrf32.dc_pro_commandlink, m_nHandle, octets, command, &response.length,
                          response.octets.data(), std::uint8_t{10}, std::uint8_t{56})
               : Succeeds(m_dcrf32.dc_cpuapdu, m_nHandle, octets, command, &response.length,
                          response.octets.data());
  }

  // Calls a function of the library, stores its result and returns whether it succeeded. A missing
  // function fails.
  template <typename Function, typename... Arguments>
  bool Succeeds(const Function& function, Arguments... arguments) {
    if (!function) return false;
    const std::int16_t result = function(arguments...);
    m_wStatus = static_cast<std::uint16_t>(result);
    return result == 0;
  }

  // Powers up a card in the field. Each step needs the one before, and a short wait after it.
  bool ResetContactless(std::uint8_t& length, char* text) {
    std::uint32_t tagType = 0;
    std::uint32_t cardNumber = 0;
    std::uint32_t size = 0;
    const auto step = [this](const auto& function, auto... arguments) {
      if (!Succeeds(function, m_nHandle, arguments...)) return false;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
      return true;
    };
    return step(m_dcrf32.dc_reset, std::uint16_t{1}) &&
           step(m_dcrf32.dc_request, std::uint8_t{1}, &tagType) &&
           step(m_dcrf32.dc_anticoll, std::uint8_t{0}, &cardNumber) &&
           step(m_dcrf32.dc_select, cardNumber, &size) &&
           step(m_dcrf32.dc_pro_resethex, &length, text);
  }

  D8 m_dcrf32;
};

}  // namespace

std::unique_ptr<CReaderToolBase> MakeD8ReaderTool() { return std::make_unique<CD8ReaderTool>(); }

}  // namespace orvane
