#pragma once

#include <cstdint>

#include "platform/library.h"
#include "readers/reader_tool_base.h"

namespace orvane {

struct TyUsbEntryPoints {
  static constexpr char kFileName[] = "tykeyint.dll";
  static std::span<const platform::EntryPoint> EntryPoints();

  std::int32_t (*TYKey_Change)() = nullptr;
  std::int32_t (*TYKey_Status)(std::uint8_t* table) = nullptr;
  std::uint16_t (*TYKey_OpenTYKey)(std::int32_t index, std::int64_t* handle) = nullptr;
  std::uint16_t (*TYKey_CloseTYKey)(std::int64_t handle) = nullptr;
  std::uint16_t (*TYKey_ColdReset)(std::int64_t handle, std::uint32_t* length,
                                   std::uint8_t* buffer) = nullptr;
  std::uint16_t (*TYKey_SendCommand)(std::int64_t handle, std::uint32_t length,
                                     const std::uint8_t* command, std::uint32_t* replyLength,
                                     std::uint8_t* reply) = nullptr;

  // Bound, never called.
  void (*TYKey_GetATR)() = nullptr;
  void (*TYKey_CardExist)() = nullptr;
  void (*TYKey_KeyExist)() = nullptr;
  void (*TYKey_BeginTransEx)() = nullptr;
  void (*TYKey_EndTransEx)() = nullptr;
};

// TY readers in USB keys. The library gives the status word as its own result; the reply holds the
// rest.
class CTYUSBReaderTool final : public CReaderToolBase {
 public:
  ~CTYUSBReaderTool() override;

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

  platform::TableLibrary<TyUsbEntryPoints> m_tykeyint;
};

}  // namespace orvane
