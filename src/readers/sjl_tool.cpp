#include "readers/sjl_tool.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "platform/code_page.h"
#include "platform/socket.h"
#include "readers/port_list.h"
#include "readers/reader_name.h"

namespace orvane {
namespace {

constexpr std::size_t kLongestAddress = 63;
constexpr std::int32_t kSendReceiveMilliseconds = 2000;
constexpr std::int32_t kConnectMilliseconds = 2000;
constexpr std::int32_t kReadyMilliseconds = 1000;
constexpr std::int32_t kLongestReply = 4096;

// "Encryption machine" and the port, in the system's code page.
std::string MachineName(std::int32_t port) {
  const std::string digits = std::to_string(port);
  return platform::AnsiText(u"\u52A0\u5BC6\u673A" + std::u16string(digits.begin(), digits.end()));
}

constexpr PortListing kPorts{
    .kind = ReaderKindTcp, .name = MachineName, .most = 16, .honoursMax = false};

}  // namespace

CSJLTool::~CSJLTool() { CloseQuietly(*this); }

std::int32_t CSJLTool::OpenByName(const char* name, std::int32_t kind) {
  m_nKind = kind;
  const std::string_view text(name);
  const std::size_t colon = text.find(':');
  if (colon > kLongestAddress) return 0;  // or none at all
  const std::string address(text.substr(0, colon));
  const auto port = static_cast<std::uint16_t>(*NumberBehind(":", text));

  if (!platform::StartSockets()) return Fail("SOCKET初始化失败");
  m_nSocket = platform::MakeTcpSocket();
  if (m_nSocket == -1) return Fail("SOCKET创建失败");
  return Connect(address.c_str(), port) ? 1 : 0;
}

// A socket that could not be set up stays for Close; one that did not connect goes at once.
bool CSJLTool::Connect(const char* address, std::uint16_t port) {
  const auto target = platform::Ipv4Address(address);
  if (!platform::SetSendTimeout(m_nSocket, kSendReceiveMilliseconds) ||
      !platform::SetReceiveTimeout(m_nSocket, kSendReceiveMilliseconds) ||
      !platform::SetBlocking(m_nSocket, false) || !target) {
    return false;
  }
  platform::BeginConnect(m_nSocket, *target, port);
  if (platform::WaitConnected(m_nSocket, kConnectMilliseconds) &&
      platform::SetBlocking(m_nSocket, true))
    return true;
  Close();
  return false;
}

std::int32_t CSJLTool::Close() {
  if (m_nSocket != -1) platform::CloseSocket(std::exchange(m_nSocket, -1));
  return 1;
}

std::int32_t CSJLTool::ListReaders(std::int32_t, ReaderInfo* list, std::int32_t count,
                                   std::int32_t max) {
  return ListPorts(kPorts, list, count, max);
}

std::int32_t CSJLTool::ResetCard(std::uint8_t*, std::uint32_t*) { return 1; }

std::int32_t CSJLTool::Transmit(const std::uint8_t* cmd, std::uint32_t cmdLen, std::uint8_t* resp,
                                std::uint32_t* respLen) {
  const auto length = static_cast<std::int32_t>(cmdLen);
  if (!platform::WaitWritable(m_nSocket, kReadyMilliseconds) ||
      platform::Send(m_nSocket, cmd, length) != length) {
    return Fail("SOCKET发送失败");
  }
  std::uint8_t reply[kLongestReply];
  const std::int32_t received = platform::WaitReadable(m_nSocket, kReadyMilliseconds)
                                    ? platform::Receive(m_nSocket, reply, kLongestReply)
                                    : 0;
  if (received <= 0) return Fail("SOCKET接收失败");
  if (resp != nullptr && respLen != nullptr) {
    std::copy_n(reply, received, resp);
    *respLen = static_cast<std::uint32_t>(received);
  }
  return 1;
}

std::int32_t CSJLTool::Fail(const char* message) {
  m_szError = message;
  return 0;
}

}  // namespace orvane
