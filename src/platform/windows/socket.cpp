#include "platform/socket.h"

#include <winsock2.h>

namespace orvane::platform {
namespace {

// A socket number is a kernel handle, which fits in 32 bits.
SOCKET Number(std::int32_t socket) {
  return socket == -1 ? INVALID_SOCKET : static_cast<SOCKET>(socket);
}

bool SetTimeout(std::int32_t socket, int option, std::int32_t milliseconds) {
  const DWORD time = static_cast<DWORD>(milliseconds);
  return setsockopt(Number(socket), SOL_SOCKET, option, reinterpret_cast<const char*>(&time),
                    sizeof time) == 0;
}

fd_set SetOf(std::int32_t socket) {
  fd_set set;
  set.fd_count = 1;
  set.fd_array[0] = Number(socket);
  return set;
}

timeval Time(std::int32_t milliseconds) {
  return {milliseconds / 1000, milliseconds % 1000 * 1000};
}

}  // namespace

bool StartSockets() {
  WSADATA data;
  return WSAStartup(MAKEWORD(2, 2), &data) == 0;
}

// Not inherited: a process that the host starts must not hold the connection as well.
std::int32_t MakeTcpSocket() {
  return static_cast<std::int32_t>(WSASocketW(AF_INET, SOCK_STREAM, 0, nullptr, 0,
                                              WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT));
}

void CloseSocket(std::int32_t socket) { closesocket(Number(socket)); }

bool SetSendTimeout(std::int32_t socket, std::int32_t milliseconds) {
  return SetTimeout(socket, SO_SNDTIMEO, milliseconds);
}

bool SetReceiveTimeout(std::int32_t socket, std::int32_t milliseconds) {
  return SetTimeout(socket, SO_RCVTIMEO, milliseconds);
}

bool SetBlocking(std::int32_t socket, bool blocking) {
  u_long nonBlocking = blocking ? 0 : 1;
  return ioctlsocket(Number(socket), static_cast<long>(FIONBIO), &nonBlocking) == 0;
}

std::optional<std::uint32_t> Ipv4Address(const char* text) {
  const unsigned long address = inet_addr(text);
  if (address == INADDR_NONE) return std::nullopt;
  return address;
}

void BeginConnect(std::int32_t socket, std::uint32_t address, std::uint16_t port) {
  sockaddr_in target{};
  target.sin_family = AF_INET;
  target.sin_port = htons(port);
  target.sin_addr.s_addr = address;
  connect(Number(socket), reinterpret_cast<const sockaddr*>(&target), sizeof target);
}

bool WaitConnected(std::int32_t socket, std::int32_t milliseconds) {
  return WaitWritable(socket, milliseconds);
}

bool WaitWritable(std::int32_t socket, std::int32_t milliseconds) {
  fd_set set = SetOf(socket);
  timeval time = Time(milliseconds);
  return select(0, nullptr, &set, nullptr, &time) > 0 && FD_ISSET(Number(socket), &set) != 0;
}

bool WaitReadable(std::int32_t socket, std::int32_t milliseconds) {
  fd_set set = SetOf(socket);
  timeval time = Time(milliseconds);
  return select(0, &set, nullptr, nullptr, &time) > 0 && FD_ISSET(Number(socket), &set) != 0;
}

std::int32_t Send(std::int32_t socket, const std::uint8_t* octets, std::int32_t count) {
  return send(Number(socket), reinterpret_cast<const char*>(octets), count, 0);
}

std::int32_t Receive(std::int32_t socket, std::uint8_t* octets, std::int32_t room) {
  return recv(Number(socket), reinterpret_cast<char*>(octets), room, 0);
}

}  // namespace orvane::platform
