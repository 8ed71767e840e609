#pragma once

#include <cstdint>

#include "platform/library.h"
#include "readers/reader_tool_base.h"

namespace orvane {

struct BsitEntryPoints {
  static constexpr char kFileName[] = "STJZZ_BSIT.dll";
  static std::span<const platform::EntryPoint> EntryPoints();

  std::int32_t (*bsit_gethidlist)() = nullptr;
  std::int32_t (*bsit_openHID)(std::int32_t zero1, std::uint16_t index,
                               std::int32_t zero2) = nullptr;
  std::int32_t (*bsit_CloseHID)(std::int64_t handle) = nullptr;
  std::int32_t (*bsit_SetSlot)(std::int64_t handle, std::uint32_t slot) = nullptr;
  std::int32_t (*bsit_ResetCard)(std::int64_t handle, std::uint8_t* buffer,
                                 std::uint32_t* length) = nullptr;
  std::int32_t (*bsit_SendApdu)(std::int64_t handle, std::uint32_t length,
                                const std::uint8_t* command, std::uint32_t* replyLength,
                                std::uint8_t* reply) = nullptr;

  // Bound, never called.
  void (*bsit_GetCardState)() = nullptr;
  void (*bsit_CloseCard)() = nullptr;
};

// BSIT readers. The library may refuse a card slot.
class CBSITReaderTool final : public CReaderToolBase {
 public:
  ~CBSITReaderTool() override;

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

  platform::TableLibrary<BsitEntryPoints> m_bsit;
};

}  // namespace orvane
