#pragma once

#include <cstdint>

#include "platform/library.h"
#include "readers/reader_tool_base.h"

namespace orvane {

struct S5009EntryPoints {
  static constexpr char kFileName[] = "S5009.dll";
  static std::span<const platform::EntryPoint> EntryPoints();

  std::int32_t (*InitCOM)(std::int32_t port) = nullptr;
  std::int16_t (*CloseCOM)(std::int32_t port) = nullptr;
  // Lengths in characters.
  std::int32_t (*ExchangeAPDU)(std::int32_t slot, const char* command, std::int32_t length,
                               char* reply, std::uint32_t* replyLength) = nullptr;
  std::int32_t (*Mifare_SearchCard)(std::uint8_t* buffer, std::uint32_t* length) = nullptr;
  std::int32_t (*Mifare_GetATS)(std::uint8_t* buffer, std::uint32_t* length) = nullptr;

  // Bound, never called.
  void (*CardPowerUP)() = nullptr;
  void (*CardPowerDown)() = nullptr;
  void (*Mifare_CardTypeSet)() = nullptr;
  void (*Mifare_SlectCardType)() = nullptr;
  void (*Mifare_ReadBlock)() = nullptr;
  void (*Mifare_WriteBlock)() = nullptr;
  void (*Mifare_WriteAccess)() = nullptr;
  void (*Mifare_Decrement)() = nullptr;
  void (*Mifare_Increment)() = nullptr;
  void (*Mifare_BlockCopy)() = nullptr;
};

// The S5009 reader, whose library speaks hexadecimal text. Its two kinds differ in what Reset asks
// for.
class CS5009ReaderTool final : public CReaderToolBase {
 public:
  CS5009ReaderTool() { m_nSlot = 3; }
  ~CS5009ReaderTool() override;

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

  std::int32_t m_nUseAts = 0;  // 1 makes ResetCard ask for the ATS
  platform::TableLibrary<S5009EntryPoints> m_s5009;
};

}  // namespace orvane
