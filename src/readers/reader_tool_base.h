#pragma once

#include <cstdint>
#include <string_view>
#include <utility>

#include "orvane.h"
#include "platform/foreign_call.h"

namespace orvane {

struct ExchangeRules;
struct Reply;

// What every driver offers. Results are 1 for success and 0 for failure unless a line says
// otherwise. This class supports nothing: a driver overrides what its reader can do, and derives
// from nothing else.
class CReaderToolBase {
 public:
  CReaderToolBase() = default;
  CReaderToolBase(const CReaderToolBase&) = delete;
  CReaderToolBase& operator=(const CReaderToolBase&) = delete;
  virtual ~CReaderToolBase() = default;

  virtual std::int32_t OpenByName(const char* name, std::int32_t kind);
  virtual std::int32_t OpenByPort(std::int32_t port, std::int32_t kind, std::int32_t baud);
  // 1 also when nothing was open.
  virtual std::int32_t Close();
  // Gives the number of records written to list; orvane.h tells what count and max mean.
  virtual std::int32_t ListReaders(std::int32_t kind, ReaderInfo* list, std::int32_t count,
                                   std::int32_t max);
  virtual std::int32_t GetKind();
  virtual void SetSlot(std::uint32_t slot);
  // Gives at most 256 octets of ATR. atr and atrLen may be null.
  virtual std::int32_t ResetCard(std::uint8_t* atr, std::uint32_t* atrLen);
  // Gives at most 4,096 octets of response. resp and respLen may be null.
  virtual std::int32_t Transmit(const std::uint8_t* cmd, std::uint32_t cmdLen, std::uint8_t* resp,
                                std::uint32_t* respLen);
  virtual std::int32_t GetOpenFlag();

 protected:
  // Transmit for the drivers that talk to a card: sends the command through Exchange, follows a
  // status word 61xx up with one GET RESPONSE (ISO/IEC 7816-4), and gives the reply by the
  // driver's rules. A failed status word is given as the two octets of the reply. Allocates
  // nothing.
  std::int32_t ExchangeWithStatusWord(const ExchangeRules& rules, const std::uint8_t* cmd,
                                      std::uint32_t cmdLen, std::uint8_t* resp,
                                      std::uint32_t* respLen);

  // The end of a ResetCard that succeeded: gives the ATR where one is wanted. 0 if the library
  // reports more octets than the area holds.
  static std::int32_t GiveAtr(const Reply& answer, std::uint8_t* atr, std::uint32_t* atrLen);

  // Sets m_szName, cut to what it holds.
  void SetName(std::string_view name);

  // The port that the library calls by the number before: hosts count from 1.
  static std::int32_t FromZero(std::int32_t port);

  // Low 32 bits of the library's handle, handed back with their sign extended; -1 is closed.
  std::int32_t m_nHandle = -1;
  std::int32_t m_nPort = -1;
  char m_szName[256] = {};
  std::uint64_t m_hContext = 0;
  std::uint32_t m_dwProtocol = 0;
  std::uint16_t m_wStatus = 0x9000;  // last status word, or last error of the library
  std::int32_t m_nOpenFlag = 0;
  std::int32_t m_nKind = 0;
  std::int32_t m_nSlot = 0;

 private:
  // Sends one command through the vendor's library. `reply` comes in all zero, and its length is
  // not trusted afterwards. False if the library reports failure.
  virtual bool Exchange(const std::uint8_t* command, std::uint32_t length, Reply& reply);

  bool ExchangeOnce(const ExchangeRules& rules, const std::uint8_t* command, std::uint32_t length,
                    Reply& reply);
};

// Runs an operation of a destructor, which lets no exception of a vendor's library pass.
template <typename Operation>
void Quietly(Operation operation) noexcept {
  try {
    platform::CallForeign([&] {
      operation();
      return 1;
    });
  } catch (...) {
  }
}

// Close for a driver's destructor.
template <typename Tool>
void CloseQuietly(Tool& tool) noexcept {
  Quietly([&tool] { tool.Tool::Close(); });
}

}  // namespace orvane
