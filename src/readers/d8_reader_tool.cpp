#include "readers/d8_reader_tool.h"

#include <chrono>
#include <cstring>
#include <string>
#include <thread>

#include "readers/port_list.h"
#include "readers/reader_name.h"
#include "readers/status_word_exchange.h"
#include "util/hex.h"

namespace orvane {
namespace {

#define ENTRY(name) ORVANE_ENTRY_POINT(D8EntryPoints, name)

constexpr platform::EntryPoint kEntryPoints[] = {
    ENTRY(dc_init),         ENTRY(dc_exit),         ENTRY(dc_config_card),     ENTRY(dc_setcpu),
    ENTRY(dc_reset),        ENTRY(dc_request),      ENTRY(dc_anticoll),        ENTRY(dc_select),
    ENTRY(dc_pro_resethex), ENTRY(dc_cpureset_hex), ENTRY(dc_pro_commandlink), ENTRY(dc_cpuapdu),
};

#undef ENTRY

constexpr std::int32_t kUsbPort = 100;
constexpr char kUsbName[] = "COM100(D8USB)";
constexpr std::int32_t kBaud = 115200;
constexpr std::uint8_t kCardTypeA = 'A';
constexpr std::uint32_t kLongestCommand = 255;
constexpr std::size_t kResetTextSize = 256;

constexpr ExchangeRules kRules{
    .source = StatusWordSource::kReplyEnd, .copy = CopyRule::kStrip, .moreDataUnwanted = 0};

constexpr PortListing kPorts{.kind = ReaderKindD8,
                             .name = ComName,
                             .most = 16,
                             .honoursMax = false,
                             .usbPort = kUsbPort,
                             .usbName = kUsbName};

void Pause() { std::this_thread::sleep_for(std::chrono::milliseconds(10)); }

}  // namespace

std::span<const platform::EntryPoint> D8EntryPoints::EntryPoints() { return kEntryPoints; }

CD8ReaderTool::~CD8ReaderTool() { CloseQuietly(*this); }

std::int32_t CD8ReaderTool::OpenByName(const char* name, std::int32_t kind) {
  m_nKind = kind;
  if (std::strstr(name, kUsbName) != nullptr) return OpenByPort(kUsbPort, kind, 9600);
  const auto port = NumberBehind("COM", name);
  return port ? OpenByPort(*port, kind, 9600) : 0;
}

std::int32_t CD8ReaderTool::OpenByPort(std::int32_t port, std::int32_t, std::int32_t) {
  const std::int32_t libraryPort = port == kUsbPort ? port : FromZero(port);
  m_dcrf32.Bind();
  if (m_dcrf32->dc_init == nullptr) return 0;
  m_nHandle =
      static_cast<std::int32_t>(m_dcrf32->dc_init(static_cast<std::int16_t>(libraryPort), kBaud));
  if (m_nHandle <= 0) return 0;
  m_nPort = libraryPort;
  SetName("D8 PORT " + std::to_string(std::int64_t{libraryPort} + 1));
  m_nKind = ReaderKindD8;
  return m_dcrf32->dc_config_card != nullptr &&
                 Succeeded(m_dcrf32->dc_config_card(m_nHandle, kCardTypeA))
             ? 1
             : 0;
}

std::int32_t CD8ReaderTool::Close() {
  if (m_nHandle == -1) return 1;
  const std::int32_t handle = std::exchange(m_nHandle, -1);
  if (m_dcrf32->dc_exit != nullptr && Succeeded(m_dcrf32->dc_exit(handle))) SetName("D8");
  return 1;
}

std::int32_t CD8ReaderTool::ListReaders(std::int32_t, ReaderInfo* list, std::int32_t count,
                                        std::int32_t max) {
  return ListPorts(kPorts, list, count, max);
}

void CD8ReaderTool::SetSlot(std::uint32_t slot) {
  m_nSlot = static_cast<std::int32_t>(slot);
  if (slot >= 12 && slot <= 15 && m_dcrf32->dc_setcpu != nullptr) {
    Succeeded(m_dcrf32->dc_setcpu(m_nHandle, static_cast<std::uint8_t>(slot)));
  }
}

std::int32_t CD8ReaderTool::ResetCard(std::uint8_t* atr, std::uint32_t* atrLen) {
  if (m_nHandle == -1) return 0;
  std::uint8_t length = 0;
  char text[kResetTextSize] = {};
  const bool reset = m_nSlot == 0
                         ? ResetContactless(length, text)
                         : m_dcrf32->dc_cpureset_hex != nullptr &&
                               Succeeded(m_dcrf32->dc_cpureset_hex(m_nHandle, &length, text));
  const std::size_t digits = std::size_t{2} * length;
  if (!reset || digits > sizeof text) return 0;
  Reply answer{};
  answer.length = length;
  DecodeHex({text, digits}, answer.octets.data());
  return GiveAtr(answer, atr, atrLen);
}

// Brings up a card in the field. Each step needs the one before, and a moment after it.
bool CD8ReaderTool::ResetContactless(std::uint8_t& length, char* text) {
  const D8EntryPoints& library = *m_dcrf32;
  std::uint32_t tagType = 0;
  std::uint32_t cardNumber = 0;
  std::uint32_t size = 0;
  const auto step = [this](auto function, auto... arguments) {
    if (function == nullptr || !Succeeded(function(m_nHandle, arguments...))) return false;
    Pause();
    return true;
  };
  return step(library.dc_reset, std::uint16_t{1}) &&
         step(library.dc_request, std::uint8_t{1}, &tagType) &&
         step(library.dc_anticoll, std::uint8_t{0}, &cardNumber) &&
         step(library.dc_select, cardNumber, &size) && step(library.dc_pro_resethex, &length, text);
}

std::int32_t CD8ReaderTool::Transmit(const std::uint8_t* cmd, std::uint32_t cmdLen,
                                     std::uint8_t* resp, std::uint32_t* respLen) {
  if (cmdLen > kLongestCommand) return 0;
  return ExchangeWithStatusWord(kRules, cmd, cmdLen, resp, respLen);
}

bool CD8ReaderTool::Exchange(const std::uint8_t* command, std::uint32_t length, Reply& reply) {
  const auto octets = static_cast<std::uint8_t>(length);
  if (m_nSlot != 0) {
    return m_dcrf32->dc_cpuapdu != nullptr &&
           Succeeded(m_dcrf32->dc_cpuapdu(m_nHandle, octets, command, &reply.length,
                                          reply.octets.data()));
  }
  return m_dcrf32->dc_pro_commandlink != nullptr &&
         Succeeded(m_dcrf32->dc_pro_commandlink(m_nHandle, octets, command, &reply.length,
                                                reply.octets.data(), 10, 56));
}

bool CD8ReaderTool::Succeeded(std::int16_t result) {
  m_wStatus = static_cast<std::uint16_t>(result);
  return result == 0;
}

}  // namespace orvane
