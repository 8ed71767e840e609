#include "vpcd_card.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include "wait.h"

namespace {

// A message of one octet switches the power off or on, resets, or asks for the ATR with this one;
// any other message is a command APDU.
constexpr uint8_t kAskForAtr = 4;

void SwitchOn(int socket, int option) {
  const int on = 1;
  setsockopt(socket, IPPROTO_TCP, option, &on, sizeof on);
}

int ConnectToReader() {
  const int connection = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(VpcdCard::kFirstSlotPort);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
    return connection;
  }
  close(connection);
  return -1;
}

}  // namespace

bool VpcdCard::Insert() {
  if (!WaitUntil([this] { return (socket_ = ConnectToReader()) != -1; })) return false;
  SwitchOn(socket_, TCP_NODELAY);
  thread_ = std::thread([this] { Serve(); });
  return true;
}

void VpcdCard::Pull() {
  if (socket_ == -1) return;
  shutdown(socket_, SHUT_RDWR);
  thread_.join();
  close(socket_);
  socket_ = -1;
}

std::string VpcdCard::Atr() const { return simulator::ToHex(card_.Atr()); }

void VpcdCard::Serve() {
  uint8_t length[2];
  while (ReceiveAll(length)) {
    std::vector<uint8_t> message(static_cast<size_t>(length[0] << 8 | length[1]));
    if (!ReceiveAll(message)) return;
    if (message.size() == 1 && message[0] != kAskForAtr) {
      card_.Reset();
      continue;
    }
    if (!Send(message.size() == 1 ? card_.Atr() : card_.Transmit(message))) return;
  }
}

bool VpcdCard::ReceiveAll(std::span<uint8_t> octets) {
  while (!octets.empty()) {
    const ssize_t received = recv(socket_, octets.data(), octets.size(), 0);
    if (received <= 0) return false;
    octets = octets.subspan(static_cast<size_t>(received));
    // The reader sends a length and holds its message back until that is acknowledged, which takes
    // 40 ms by default. The system takes the option back by itself, so it is set anew every time.
    SwitchOn(socket_, TCP_QUICKACK);
  }
  return true;
}

bool VpcdCard::Send(const std::vector<uint8_t>& answer) {
  std::vector<uint8_t> message = {static_cast<uint8_t>(answer.size() >> 8),
                                  static_cast<uint8_t>(answer.size())};
  message.insert(message.end(), answer.begin(), answer.end());
  return send(socket_, message.data(), message.size(), MSG_NOSIGNAL) ==
         static_cast<ssize_t>(message.size());
}
