#include "loopback_socket.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>
#include <utility>

namespace simulator {
namespace {

constexpr intptr_t kNone = -1;
constexpr size_t kMostReceived = 65536;

int Checked(int result) {
  if (result < 0) throw std::runtime_error("no socket on the loopback interface");
  return result;
}

sockaddr_in Loopback() {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

}  // namespace

LoopbackSocket::LoopbackSocket()
    : LoopbackSocket(Checked(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))) {
  const sockaddr_in address = Loopback();
  const int number = static_cast<int>(number_);
  Checked(bind(number, reinterpret_cast<const sockaddr*>(&address), sizeof address));
  Checked(listen(number, SOMAXCONN));
}

LoopbackSocket::LoopbackSocket(LoopbackSocket&& other) noexcept
    : number_(std::exchange(other.number_, kNone)) {}

LoopbackSocket& LoopbackSocket::operator=(LoopbackSocket&& other) noexcept {
  std::swap(number_, other.number_);
  return *this;
}

LoopbackSocket::~LoopbackSocket() {
  if (number_ != kNone) close(static_cast<int>(number_));
}

uint16_t LoopbackSocket::Port() const {
  sockaddr_in address{};
  socklen_t length = sizeof address;
  Checked(getsockname(static_cast<int>(number_), reinterpret_cast<sockaddr*>(&address), &length));
  return ntohs(address.sin_port);
}

std::optional<size_t> LoopbackSocket::WaitForOne(std::span<const LoopbackSocket> sockets,
                                                 int milliseconds) {
  std::vector<pollfd> waiting;
  for (const LoopbackSocket& each : sockets) {
    waiting.push_back({static_cast<int>(each.number_), POLLIN, 0});
  }
  poll(waiting.data(), waiting.size(), milliseconds);
  for (size_t place = 0; place < waiting.size(); ++place) {
    if (waiting[place].revents != 0) return place;
  }
  return std::nullopt;
}

LoopbackSocket LoopbackSocket::Accept() const {
  return LoopbackSocket(Checked(accept(static_cast<int>(number_), nullptr, nullptr)));
}

Octets LoopbackSocket::Receive() const {
  Octets octets(kMostReceived);
  const ssize_t count = recv(static_cast<int>(number_), octets.data(), octets.size(), 0);
  octets.resize(count > 0 ? static_cast<size_t>(count) : 0);
  return octets;
}

void LoopbackSocket::Send(const Octets& octets) const {
  for (std::span<const uint8_t> left = octets; !left.empty();) {
    const ssize_t sent = send(static_cast<int>(number_), left.data(), left.size(), MSG_NOSIGNAL);
    if (sent <= 0) return;
    left = left.subspan(static_cast<size_t>(sent));
  }
}

}  // namespace simulator
