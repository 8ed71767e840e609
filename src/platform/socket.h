#pragma once

#include <cstdint>
#include <optional>

namespace orvane::platform {

// TCP over IPv4, one system call each. A socket is a number; -1 is none, and every call with it
// fails. Waits are in milliseconds.

// Prepares the system's sockets. May be called again.
bool StartSockets();

// -1 if the system gives none.
std::int32_t MakeTcpSocket();

void CloseSocket(std::int32_t socket);

bool SetSendTimeout(std::int32_t socket, std::int32_t milliseconds);
bool SetReceiveTimeout(std::int32_t socket, std::int32_t milliseconds);
bool SetBlocking(std::int32_t socket, bool blocking);

// The octets of a dotted address, in network order; empty if the text is none.
std::optional<std::uint32_t> Ipv4Address(const char* text);

// Begins to connect a non-blocking socket. WaitConnected gives the outcome.
void BeginConnect(std::int32_t socket, std::uint32_t address, std::uint16_t port);

// True when the connection is up; false on refusal, failure or time-out.
bool WaitConnected(std::int32_t socket, std::int32_t milliseconds);

bool WaitWritable(std::int32_t socket, std::int32_t milliseconds);
bool WaitReadable(std::int32_t socket, std::int32_t milliseconds);

// The number of octets sent; -1 on failure.
std::int32_t Send(std::int32_t socket, const std::uint8_t* octets, std::int32_t count);

// The number of octets from one receive; 0 if the peer has closed, -1 on failure.
std::int32_t Receive(std::int32_t socket, std::uint8_t* octets, std::int32_t room);

}  // namespace orvane::platform
