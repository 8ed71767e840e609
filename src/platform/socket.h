#pragma once

#include <cstdint>
#include <optional>

namespace orvane::platform {

// TCP over IPv4, one call of the system each. A socket is a number; -1 is none, and every call with
// it fails. Waits are in milliseconds.

// Readies the system's sockets; may be called again.
bool StartSockets();

// -1 if the system gives none.
std::int32_t MakeTcpSocket();

void CloseSocket(std::int32_t socket);

bool SetSendTimeout(std::int32_t socket, std::int32_t milliseconds);
bool SetReceiveTimeout(std::int32_t socket, std::int32_t milliseconds);
bool SetBlocking(std::int32_t socket, bool blocking);

// A dotted address, in network order.
std::optional<std::uint32_t> Ipv4Address(const char* text);

// Begins to connect a socket that does not block. What comes of it is for WaitConnected to tell.
void BeginConnect(std::int32_t socket, std::uint32_t address, std::uint16_t port);

// True once the connection stands; false on refusal, failure or time-out.
bool WaitConnected(std::int32_t socket, std::int32_t milliseconds);

bool WaitWritable(std::int32_t socket, std::int32_t milliseconds);
bool WaitReadable(std::int32_t socket, std::int32_t milliseconds);

// The number of octets sent; -1 on failure.
std::int32_t Send(std::int32_t socket, const std::uint8_t* octets, std::int32_t count);

// The number of octets that one receive brought; 0 when the peer has closed, -1 on failure.
std::int32_t Receive(std::int32_t socket, std::uint8_t* octets, std::int32_t room);

}  // namespace orvane::platform
