#include "platform/socket.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>

namespace orvane::platform {
namespace {

bool SetTimeout(int socket, int option, std::int32_t milliseconds) {
  const timeval time{.tv_sec = milliseconds / 1000, .tv_usec = milliseconds % 1000 * 1000L};
  return setsockopt(socket, SOL_SOCKET, option, &time, sizeof time) == 0;
}

// A signal does not end the wait.
bool Wait(int socket, short events, std::int32_t milliseconds) {
  if (socket == -1) return false;
  using Clock = std::chrono::steady_clock;
  const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
  for (;;) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
    pollfd waiting{.fd = socket, .events = events, .revents = 0};
    const int ready = poll(&waiting, 1, left > 0 ? static_cast<int>(left) : 0);
    if (ready >= 0 || errno != EINTR) return ready > 0 && (waiting.revents & POLLNVAL) == 0;
  }
}

}  // namespace

bool StartSockets() { return true; }

std::int32_t MakeTcpSocket() { return socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0); }

void CloseSocket(std::int32_t socket) { close(socket); }

bool SetSendTimeout(std::int32_t socket, std::int32_t milliseconds) {
  return SetTimeout(socket, SO_SNDTIMEO, milliseconds);
}

bool SetReceiveTimeout(std::int32_t socket, std::int32_t milliseconds) {
  return SetTimeout(socket, SO_RCVTIMEO, milliseconds);
}

bool SetBlocking(std::int32_t socket, bool blocking) {
  const int flags = fcntl(socket, F_GETFL);
  if (flags == -1) return false;
  return fcntl(socket, F_SETFL, blocking ? flags & ~O_NONBLOCK : flags | O_NONBLOCK) == 0;
}

std::optional<std::uint32_t> Ipv4Address(const char* text) {
  const in_addr_t address = inet_addr(text);
  if (address == INADDR_NONE) return std::nullopt;
  return address;
}

void BeginConnect(std::int32_t socket, std::uint32_t address, std::uint16_t port) {
  sockaddr_in target{};
  target.sin_family = AF_INET;
  target.sin_port = htons(port);
  target.sin_addr.s_addr = address;
  (void)connect(socket, reinterpret_cast<const sockaddr*>(&target), sizeof target);
}

bool WaitConnected(std::int32_t socket, std::int32_t milliseconds) {
  // A socket whose connection was refused or never began is ready for writing here too: it has a
  // pending error or no peer.
  int error = 0;
  socklen_t length = sizeof error;
  sockaddr_in peer{};
  socklen_t room = sizeof peer;
  return Wait(socket, POLLOUT, milliseconds) &&
         getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &length) == 0 && error == 0 &&
         getpeername(socket, reinterpret_cast<sockaddr*>(&peer), &room) == 0;
}

bool WaitWritable(std::int32_t socket, std::int32_t milliseconds) {
  return Wait(socket, POLLOUT, milliseconds);
}

bool WaitReadable(std::int32_t socket, std::int32_t milliseconds) {
  return Wait(socket, POLLIN, milliseconds);
}

std::int32_t Send(std::int32_t socket, const std::uint8_t* octets, std::int32_t count) {
  // MSG_NOSIGNAL: without it, a peer that has gone would end the host by a signal.
  return static_cast<std::int32_t>(
      send(socket, octets, static_cast<std::size_t>(count), MSG_NOSIGNAL));
}

std::int32_t Receive(std::int32_t socket, std::uint8_t* octets, std::int32_t room) {
  return static_cast<std::int32_t>(recv(socket, octets, static_cast<std::size_t>(room), 0));
}

}  // namespace orvane::platform
