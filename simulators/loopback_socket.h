#pragma once

// TCP on the loopback interface, as far as a small server needs it.

#include <optional>

#include "common/octets.h"

namespace simulator {

// A socket that closes itself. Every failure is thrown as std::runtime_error unless a line says
// otherwise.
class LoopbackSocket {
 public:
  // Listens on a port that the system chooses.
  LoopbackSocket();
  LoopbackSocket(LoopbackSocket&& other) noexcept;
  LoopbackSocket& operator=(LoopbackSocket&& other) noexcept;
  ~LoopbackSocket();

  uint16_t Port() const;

  // Waits until one of the sockets can be read, and gives its index; empty after the time.
  static std::optional<size_t> WaitForOne(std::span<const LoopbackSocket> sockets,
                                          int milliseconds);

  // Accepts the connection that waits at a listening socket.
  LoopbackSocket Accept() const;

  // The octets of one receive; empty if the peer has closed or is gone.
  Octets Receive() const;

  // A peer that is gone is no failure.
  void Send(const Octets& octets) const;

 private:
  explicit LoopbackSocket(intptr_t number) : number_(number) {}
  intptr_t number_;
};

}  // namespace simulator
