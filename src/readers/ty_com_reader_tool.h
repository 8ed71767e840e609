#pragma once

#include <cstdint>

#include "platform/library.h"
#include "readers/reader_tool_base.h"

namespace orvane {

struct TyComEntryPoints {
  static constexpr char kFileName[] = "tyreader.dll";
  static std::span<const platform::EntryPoint> EntryPoints();

  std::int32_t (*TY_Open)(std::int32_t baud, std::int32_t port) = nullptr;
  std::int32_t (*TY_Close)(std::int64_t handle) = nullptr;
  std::uint16_t (*TY_Dreset)(std::int64_t handle, std::uint8_t slot, std::uint16_t* length,
                             std::uint8_t* buffer) = nullptr;
  std::uint16_t (*TY_Dtsi_api)(std::int64_t handle, std::uint8_t slot, std::uint32_t length,
                               const std::uint8_t* command, std::uint32_t* replyLength,
                               std::uint8_t* reply) = nullptr;

  // Bound, never called.
  void (*TY_DCardExist)() = nullptr;
};

// TY readers on a serial port. The library gives the status word as its own result; the reply
// holds the rest.
class CTYCOMReaderTool final : public CReaderToolBase {
 public:
  ~CTYCOMReaderTool() override;

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

  platform::TableLibrary<TyComEntryPoints> m_tyreader;
};

}  // namespace orvane
