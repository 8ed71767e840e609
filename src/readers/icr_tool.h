#pragma once

#include <cstdint>

#include "platform/library.h"
#include "readers/reader_tool_base.h"

namespace orvane {

struct IcrEntryPoints {
  static constexpr char kFileName[] = "sdtapi.dll";
  static std::span<const platform::EntryPoint> EntryPoints();

  std::int32_t (*SDT_OpenPort)(std::int32_t port) = nullptr;
  std::int32_t (*SDT_ClosePort)(std::int32_t port) = nullptr;
  std::int32_t (*SDT_StartFindIDCard)(std::int32_t port, std::uint8_t* buffer,
                                      std::int32_t ifOpen) = nullptr;
  std::int32_t (*SDT_SelectIDCard)(std::int32_t port, std::uint8_t* buffer,
                                   std::int32_t ifOpen) = nullptr;
  std::int32_t (*SDT_ReadBaseMsg)(std::int32_t port, std::uint8_t* message1, std::uint32_t* length1,
                                  std::uint8_t* message2, std::uint32_t* length2,
                                  std::int32_t ifOpen) = nullptr;
};

// A reader of identity cards. It exchanges no commands: ResetCard finds and selects a card, and
// Transmit reads the card's base message, which the host does not see.
class CICRTool final : public CReaderToolBase {
 public:
  CICRTool();
  ~CICRTool() override;

  std::int32_t OpenByName(const char* name, std::int32_t kind) override;
  std::int32_t Close() override;
  std::int32_t ListReaders(std::int32_t kind, ReaderInfo* list, std::int32_t count,
                           std::int32_t max) override;
  std::int32_t ResetCard(std::uint8_t* atr, std::uint32_t* atrLen) override;
  std::int32_t Transmit(const std::uint8_t* cmd, std::uint32_t cmdLen, std::uint8_t* resp,
                        std::uint32_t* respLen) override;

 private:
  std::int32_t Open();

  std::int32_t m_nIcrPort = 0;
  std::int32_t m_nIfOpen = 0;
  platform::TableLibrary<IcrEntryPoints> m_sdtapi;
};

}  // namespace orvane
