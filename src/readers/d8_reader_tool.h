#pragma once

#include <cstdint>

#include "platform/library.h"
#include "readers/reader_tool_base.h"

namespace orvane {

struct D8EntryPoints {
  static constexpr char kFileName[] = "dcrf32.dll";
  static std::span<const platform::EntryPoint> EntryPoints();

  std::int64_t (*dc_init)(std::int16_t port, std::int32_t baud) = nullptr;
  std::int16_t (*dc_exit)(std::int64_t handle) = nullptr;
  std::int16_t (*dc_config_card)(std::int64_t handle, std::uint8_t type) = nullptr;
  std::int16_t (*dc_setcpu)(std::int64_t handle, std::uint8_t slot) = nullptr;
  std::int16_t (*dc_reset)(std::int64_t handle, std::uint16_t milliseconds) = nullptr;
  std::int16_t (*dc_request)(std::int64_t handle, std::uint8_t mode,
                             std::uint32_t* tagType) = nullptr;
  std::int16_t (*dc_anticoll)(std::int64_t handle, std::uint8_t zero,
                              std::uint32_t* cardNumber) = nullptr;
  std::int16_t (*dc_select)(std::int64_t handle, std::uint32_t cardNumber,
                            std::uint32_t* size) = nullptr;
  std::int16_t (*dc_pro_resethex)(std::int64_t handle, std::uint8_t* length, char* text) = nullptr;
  std::int16_t (*dc_cpureset_hex)(std::int64_t handle, std::uint8_t* length, char* text) = nullptr;
  std::int16_t (*dc_pro_commandlink)(std::int64_t handle, std::uint8_t length,
                                     const std::uint8_t* command, std::uint32_t* replyLength,
                                     std::uint8_t* reply, std::uint8_t ten,
                                     std::uint8_t fiftySix) = nullptr;
  std::int16_t (*dc_cpuapdu)(std::int64_t handle, std::uint8_t length, const std::uint8_t* command,
                             std::uint32_t* replyLength, std::uint8_t* reply) = nullptr;
};

// D8 readers, on a serial port or on USB (port 100). Card slot 0 is the contactless field, any
// other slot a contact slot. Every result of the library lands in m_wStatus.
class CD8ReaderTool final : public CReaderToolBase {
 public:
  ~CD8ReaderTool() override;

  std::int32_t OpenByName(const char* name, std::int32_t kind) override;
  std::int32_t OpenByPort(std::int32_t port, std::int32_t kind, std::int32_t baud) override;
  std::int32_t Close() override;
  std::int32_t ListReaders(std::int32_t kind, ReaderInfo* list, std::int32_t count,
                           std::int32_t max) override;
  void SetSlot(std::uint32_t slot) override;
  std::int32_t ResetCard(std::uint8_t* atr, std::uint32_t* atrLen) override;
  std::int32_t Transmit(const std::uint8_t* cmd, std::uint32_t cmdLen, std::uint8_t* resp,
                        std::uint32_t* respLen) override;

 private:
  bool Exchange(const std::uint8_t* command, std::uint32_t length, Reply& reply) override;

  // Stores a result of the library and tells whether it is success.
  bool Succeeded(std::int16_t result);
  bool ResetContactless(std::uint8_t& length, char* text);

  platform::TableLibrary<D8EntryPoints> m_dcrf32;
};

}  // namespace orvane
