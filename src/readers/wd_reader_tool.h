#pragma once

#include <cstdint>

#include "platform/library.h"
#include "readers/reader_tool_base.h"

namespace orvane {

struct WdEntryPoints {
  static constexpr char kFileName[] = "wdcrwx.dll";
  static std::span<const platform::EntryPoint> EntryPoints();

  std::int32_t (*CT_open)(const char* name, std::int32_t zero1, std::int32_t zero2) = nullptr;
  std::int32_t (*CT_close)(std::int64_t handle) = nullptr;
  std::uint16_t (*ICC_tsi_api)(std::int64_t handle, std::uint8_t length,
                               const std::uint8_t* command, std::uint32_t* replyLength,
                               std::uint8_t* reply) = nullptr;
  std::int32_t (*ICC_set_NAD)(std::int64_t handle, std::uint32_t address) = nullptr;

  // Bound, never called.
  void (*ICC_reset)() = nullptr;
};

// The WD reader, of which there is one. Its library is loaded from the folder of this library and
// from nowhere else. Reset is an exchange whose reply is the ATR.
class CWDReaderTool final : public CReaderToolBase {
 public:
  CWDReaderTool();
  ~CWDReaderTool() override;

  std::int32_t OpenByName(const char* name, std::int32_t kind) override;
  std::int32_t Close() override;
  std::int32_t ListReaders(std::int32_t kind, ReaderInfo* list, std::int32_t count,
                           std::int32_t max) override;
  void SetSlot(std::uint32_t slot) override;
  std::int32_t ResetCard(std::uint8_t* atr, std::uint32_t* atrLen) override;
  std::int32_t Transmit(const std::uint8_t* cmd, std::uint32_t cmdLen, std::uint8_t* resp,
                        std::uint32_t* respLen) override;

 private:
  bool Exchange(const std::uint8_t* command, std::uint32_t length, Reply& reply) override;

  platform::TableLibrary<WdEntryPoints> m_wdcrwx;
};

}  // namespace orvane
