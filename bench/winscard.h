#pragma once

#include <cstdint>

// The part of PC/SC, in the widths of 64-bit Windows, that a reader needs to open and to transmit.

struct ProtocolHeader {
  std::uint32_t protocol;
  std::uint32_t length;
};

using TransmitFunction = std::int32_t(std::int64_t card, const ProtocolHeader* sendHeader,
                                      const std::uint8_t* command, std::uint32_t commandLength,
                                      ProtocolHeader* receiveHeader, std::uint8_t* reply,
                                      std::uint32_t* replyLength);
