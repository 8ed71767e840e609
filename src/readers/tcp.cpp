#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "platform/code_page.h"
#include "platform/socket.h"
#include "readers/drivers.h"
#include "readers/ports.h"

namespace orvane {
namespace {

constexpr std::size_t kLongestAddress = 63;
constexpr std::int32_t kSendReceiveMilliseconds = 2000;
constexpr std::int32_t kConnectMilliseconds = 2000;
constexpr std::int32_t kReadyMilliseconds = 1000;
constexpr std::int32_t kLongestResponse = 4096;

// "Encryption machine" in Chinese and the port, in the system's code page.
std::string MachineName(std::int32_t port) {
  const std::string digits = std::to_string(port);
  return platform::AnsiText(u"\u52A0\u5BC6\u673A" + std::u16string(digits.begin(), digits.end()));
}

constexpr PortListing kPorts{
    .kind = ReaderKindTcp, .name = MachineName, .most = 16, .honoursMax = false};

// A payment HSM on the network. A command goes out unchanged; the response is what one receive
// brings.
class CTcpTool final : public CReaderToolBase {
 public:
  CTcpTool() : CReaderToolBase(nullptr, &kPorts) {}

  std::int32_t OpenByName(const char* name, std::int32_t kind) override {
    m_nKind = kind;
    const std::string_view text(name);
    const std::size_t colon = text.find(':');
    if (colon > kLongestAddress) return 0;  // also refuses a name without a colon
    const std::string address(text.substr(0, colon));
    const auto port = static_cast<std::uint16_t>(*NumberBehind(":", text));

    if (!platform::StartSockets()) return Fail("SOCKET初始化失败");
    m_nSocket = platform::MakeTcpSocket();
    if (m_nSocket == -1) return Fail("SOCKET创建失败");
    return Connect(address.c_str(), port) ? 1 : 0;
  }

  std::int32_t Close() override {
    if (m_nSocket != -1) platform::CloseSocket(std::exchange(m_nSocket, -1));
    return 1;
  }

  std::int32_t ResetCard(std::uint8_t*, std::uint32_t*) override { return 1; }

  std::int32_t Transmit(const std::uint8_t* cmd, std::uint32_t cmdLen, std::uint8_t* resp,
                        std::uint32_t* respLen) override {
    const auto length = static_cast<std::int32_t>(cmdLen);
    if (!platform::WaitWritable(m_nSocket, kReadyMilliseconds) ||
        platform::Send(m_nSocket, cmd, length) != length) {
      return Fail("SOCKET发送失败");
    }
    std::uint8_t response[kLongestResponse];
    const std::int32_t received = platform::WaitReadable(m_nSocket, kReadyMilliseconds)
                                      ? platform::Receive(m_nSocket, response, kLongestResponse)
                                      : 0;
    if (received <= 0) return Fail("SOCKET接收失败");
    if (resp != nullptr && respLen != nullptr) {
      std::copy_n(response, received, resp);
      *respLen = static_cast<std::uint32_t>(received);
    }
    return 1;
  }

 private:
  // After a failed set-up the socket stays open for Close; a failed connection closes it at once.
  bool Connect(const char* address, std::uint16_t port) {
    const auto target = platform::Ipv4Address(address);
    if (!platform::SetSendTimeout(m_nSocket, kSendReceiveMilliseconds) ||
        !platform::SetReceiveTimeout(m_nSocket, kSendReceiveMilliseconds) ||
        !platform::SetBlocking(m_nSocket, false) || !target) {
      return false;
    }
    platform::BeginConnect(m_nSocket, *target, port);
    if (platform::WaitConnected(m_nSocket, kConnectMilliseconds) &&
        platform::SetBlocking(m_nSocket, true)) {
      return true;
    }
    Close();
    return false;
  }

  std::int32_t Fail(const char* message) {
    m_szError = message;
    return 0;
  }

  std::int32_t m_nSocket = -1;
  std::string m_szError;  // text of the last failure
};

}  // namespace

std::unique_ptr<CReaderToolBase> MakeTcpTool() { return std::make_unique<CTcpTool>(); }

}  // namespace orvane
