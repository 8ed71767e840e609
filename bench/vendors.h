#pragma once

#include <cstdint>

// The vendors' functions that send a command, in the widths of 64-bit Windows.

struct ProtocolHeader {
  std::uint32_t protocol;
  std::uint32_t length;
};

extern "C" {

using SCardTransmitFunction = std::int32_t(std::int64_t card, const ProtocolHeader* sendHeader,
                                           const std::uint8_t* command, std::uint32_t length,
                                           ProtocolHeader* receiveHeader, std::uint8_t* reply,
                                           std::uint32_t* replyLength);
using dc_cpuapduFunction = std::int16_t(std::int64_t handle, std::uint8_t length,
                                        const std::uint8_t* command, std::uint32_t* replyLength,
                                        std::uint8_t* reply);
using ExchangeAPDUFunction = std::int32_t(std::int32_t slot, const char* command,
                                          std::int32_t length, char* reply,
                                          std::uint32_t* replyLength);
using TY_Dtsi_apiFunction = std::uint16_t(std::int32_t handle, std::uint8_t slot,
                                          std::uint32_t length, const std::uint8_t* command,
                                          std::uint32_t* replyLength, std::uint8_t* reply);
using TYKey_SendCommandFunction = std::uint16_t(std::int64_t handle, std::uint32_t length,
                                                const std::uint8_t* command,
                                                std::uint32_t* replyLength, std::uint8_t* reply);
using ICC_tsi_apiFunction = std::uint16_t(std::int32_t handle, std::uint8_t length,
                                          const std::uint8_t* command, std::uint32_t* replyLength,
                                          std::uint8_t* reply);
using bsit_SendApduFunction = std::int32_t(std::int32_t handle, std::uint32_t length,
                                           const std::uint8_t* command, std::uint32_t* replyLength,
                                           std::uint8_t* reply);

}  // extern "C"
