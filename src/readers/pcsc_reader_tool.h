#pragma once

#include <cstdint>

#include "readers/pcsc_interface.h"
#include "readers/reader_tool_base.h"

namespace orvane {

// Any reader that the platform's PC/SC service knows. A reader opens without a card (the handle is
// then 0), and ResetCard connects anew when a card has come or was changed. Card slot 0 uses the
// standard calls, any other slot two control codes of the reader's own.
class CPCSCReaderTool final : public CReaderToolBase {
 public:
  ~CPCSCReaderTool() override;

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

  bool CanListReaders() const;
  bool EstablishContext();
  LONG Connect(const char* name, SCARDHANDLE& handle);
  LONG ReadAtr(Reply& atr);
  LONG ReconnectAndReadAtr(Reply& atr);
  bool CardIsPresent();

  platform::Library<PcscEntryPoints> m_winscard;
};

}  // namespace orvane
