#include "loopback_socket.h"

#include <winsock2.h>

#include <stdexcept>
#include <utility>

namespace simulator {
namespace {

constexpr intptr_t kNone = static_cast<intptr_t>(INVALID_SOCKET);
constexpr size_t kMostReceived = 65536;

SOCKET Number(intptr_t number) { return static_cast<SOCKET>(number); }

void Check(bool works) {
  if (!works) throw std::runtime_error("no socket on the loopback interface");
}

intptr_t Checked(SOCKET number) {
  Check(number != INVALID_SOCKET);
  return static_cast<intptr_t>(number);
}

intptr_t MakeSocket() {
  WSADATA data;
  Check(WSAStartup(MAKEWORD(2, 2), &data) == 0);
  return Checked(socket(AF_INET, SOCK_STREAM, 0));
}

sockaddr_in Loopback() {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

}  // namespace

LoopbackSocket::LoopbackSocket() : LoopbackSocket(MakeSocket()) {
  const sockaddr_in address = Loopback();
  Check(bind(Number(number_), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0);
  Check(listen(Number(number_), SOMAXCONN) == 0);
}

LoopbackSocket::LoopbackSocket(LoopbackSocket&& other) noexcept
    : number_(std::exchange(other.number_, kNone)) {}

LoopbackSocket& LoopbackSocket::operator=(LoopbackSocket&& other) noexcept {
  std::swap(number_, other.number_);
  return *this;
}

LoopbackSocket::~LoopbackSocket() {
  if (number_ != kNone) closesocket(Number(number_));
}

uint16_t LoopbackSocket::Port() const {
  sockaddr_in address{};
  int length = sizeof address;
  Check(getsockname(Number(number_), reinterpret_cast<sockaddr*>(&address), &length) == 0);
  return ntohs(address.sin_port);
}

std::optional<size_t> LoopbackSocket::WaitForOne(std::span<const LoopbackSocket> sockets,
                                                 int milliseconds) {
  std::vector<WSAPOLLFD> waiting;
  for (const LoopbackSocket& each : sockets) waiting.push_back({Number(each.number_), POLLIN, 0});
  WSAPoll(waiting.data(), static_cast<ULONG>(waiting.size()), milliseconds);
  for (size_t place = 0; place < waiting.size(); ++place) {
    if (waiting[place].revents != 0) return place;
  }
  return std::nullopt;
}

LoopbackSocket LoopbackSocket::Accept() const {
  return LoopbackSocket(Checked(accept(Number(number_), nullptr, nullptr)));
}

Octets LoopbackSocket::Receive() const {
  Octets octets(kMostReceived);
  const int count = recv(Number(number_), reinterpret_cast<char*>(octets.data()),
                         static_cast<int>(octets.size()), 0);
  octets.resize(count > 0 ? static_cast<size_t>(count) : 0);
  return octets;
}

void LoopbackSocket::Send(const Octets& octets) const {
  for (std::span<const uint8_t> left = octets; !left.empty();) {
    const int sent = send(Number(number_), reinterpret_cast<const char*>(left.data()),
                          static_cast<int>(left.size()), 0);
    if (sent <= 0) return;
    left = left.subspan(static_cast<size_t>(sent));
  }
}

}  // namespace simulator
