#pragma once

#include <cstdint>

#include "readers/pcsc_interface.h"
#include "readers/reader_tool_base.h"

namespace orvane {

// A card handle of the library: 0 for a reader without a card, -1 for none. Its low half goes back
// to the library, the sign extended. Where the library gave a wider handle and refuses that, it
// gets what it gave from then on. What a handle stands for is never read out of its half.
class CardHandle {
 public:
  CardHandle() = default;
  explicit CardHandle(SCARDHANDLE given) : m_given(given), m_passed(Extended(given)) {}

  bool IsClosed() const { return m_given == kClosed; }
  bool IsWithoutCard() const { return m_given == 0; }

  // Runs a call of the library with the handle, twice if need be, and gives its code.
  template <typename Call>
  LONG Pass(Call call) {
    const LONG code = call(m_passed);
    const bool refused = code == ERROR_INVALID_HANDLE || code == SCARD_E_INVALID_HANDLE;
    if (!refused || m_passed == m_given) return code;
    m_passed = m_given;
    return call(m_passed);
  }

 private:
  static constexpr auto kClosed = static_cast<SCARDHANDLE>(-1);

  static SCARDHANDLE Extended(SCARDHANDLE handle) {
    return static_cast<SCARDHANDLE>(std::int64_t{static_cast<std::int32_t>(handle)});
  }

  SCARDHANDLE m_given = kClosed;
  SCARDHANDLE m_passed = kClosed;
};

// Any reader that the platform's PC/SC service knows. A reader opens without a card, and ResetCard
// connects anew when a card has come or was changed. Card slot 0 uses the standard calls, any other
// slot two control codes of the reader's own.
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
  LONG Connect(const char* name);
  void Keep(SCARDHANDLE handle);
  LONG ReadAtr(Reply& atr);
  LONG ReconnectAndReadAtr(Reply& atr);
  bool CardIsPresent();

  CardHandle m_card;  // m_nHandle is its low half
  platform::TableLibrary<PcscEntryPoints> m_winscard;
};

}  // namespace orvane
