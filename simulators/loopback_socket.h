#pragma once

// TCP on the loopback interface, as much of it as a small server needs.

#include <optional>

#include "common/octets.h"

namespace simulator {

// A socket, closed at the end of its life. Every fault is thrown as std::runtime_error unless a
// line says otherwise.
class LoopbackSocket {
 public:
  // Listens on a port that the system chooses.
  LoopbackSocket();
  LoopbackSocket(LoopbackSocket&& other) noexcept;
  LoopbackSocket& operator=(LoopbackSocket&& other) noexcept;
  ~LoopbackSocket();

  uint16_t Port() const;

  // Waits until one of the sockets can be read from, and gives its place; nothing when the time is
  // over.
  static std::optional<size_t> WaitForOne(std::span<const LoopbackSocket> sockets,
                                          int milliseconds);

  // The connection that waits at a listening socket.
  LoopbackSocket Accept() const;

  // What one receive brings; nothing if the peer has closed or gone.
  Octets Receive() const;

  // A peer that has gone is no fault.
  void Send(const Octets& octets) const;

 private:
  explicit LoopbackSocket(intptr_t number) : number_(number) {}
  intptr_t number_;
};

}  // namespace simulator
