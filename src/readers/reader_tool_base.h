#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "orvane.h"
#include "platform/foreign_call.h"

namespace orvane {

struct PortListing;

constexpr std::uint32_t kResponseSize = 256;

// One response of a card, as a vendor's library gives it.
struct Response {
  std::array<std::uint8_t, kResponseSize> octets;
  std::uint32_t length;      // as the library reports it: it may lie
  std::uint16_t statusWord;  // where the library's result is the status word
};

// Where a driver finds the status word.
enum class StatusWordSource { kResponseEnd, kLibraryResult };

// What the host gets of a good response.
enum class CopyRule {
  kWhole,
  kStrip  // without its status word; a status word that stands alone is kept
};

// All that differs between the drivers that exchange commands with a card.
struct ExchangeRules {
  StatusWordSource source;
  CopyRule copy;
  std::int32_t moreDataUnwanted;   // the result for 61xx when no response is asked for
  bool showsSecondStatus = false;  // a failed GET RESPONSE replaces the 61xx that the host sees
  bool confirmsSecondEnd = false;  // the response to GET RESPONSE must end in 9000 as well
  std::uint32_t longestCommand = 4096;  // a longer one fails without a call
};

// What every driver offers. Results are 1 for success and 0 for failure unless a line says
// otherwise. A driver overrides what its reader does in a way of its own, and derives from nothing
// else.
class CReaderToolBase {
 public:
  // Rules are for a driver that exchanges commands with a card, ports for one that lists ports.
  explicit CReaderToolBase(const ExchangeRules* rules = nullptr, const PortListing* ports = nullptr)
      : m_rules(rules), m_ports(ports) {}
  CReaderToolBase(const CReaderToolBase&) = delete;
  CReaderToolBase& operator=(const CReaderToolBase&) = delete;
  virtual ~CReaderToolBase() = default;

  // Each fails unless it is overridden.
  virtual std::int32_t OpenByName(const char* name, std::int32_t kind);
  virtual std::int32_t OpenByPort(std::int32_t port, std::int32_t kind, std::int32_t baud);
  // 1 also when nothing was open. It comes before the destructor.
  virtual std::int32_t Close();
  // Gives the number of records written to list; orvane.h tells what count and max mean.
  virtual std::int32_t ListReaders(std::int32_t kind, ReaderInfo* list, std::int32_t count,
                                   std::int32_t max);
  virtual std::int32_t GetKind();
  // Stores the slot.
  virtual void SetSlot(std::uint32_t slot);
  // Gives at most 256 octets of ATR. atr and atrLen may be null. Fails unless it is overridden.
  virtual std::int32_t ResetCard(std::uint8_t* atr, std::uint32_t* atrLen);
  // Gives at most 4,096 octets of response. resp and respLen may be null. Sends the command through
  // Exchange, follows a status word 61xx up with one GET RESPONSE (ISO/IEC 7816-4), and gives the
  // response by the driver's rules. A failed status word is given as the first two octets of the
  // response. Allocates nothing. Fails without rules.
  virtual std::int32_t Transmit(const std::uint8_t* cmd, std::uint32_t cmdLen, std::uint8_t* resp,
                                std::uint32_t* respLen);
  virtual std::int32_t GetOpenFlag();

 protected:
  // OpenByPort with the number that stands behind the marker in the name. 0 without a marker.
  std::int32_t OpenByPortBehind(std::string_view marker, const char* name, std::int32_t kind);

  // The end of a ResetCard that succeeded: gives the ATR where one is wanted. 0 if the library
  // reports more octets than the buffer holds.
  static std::int32_t GiveAtr(const Response& answer, std::uint8_t* atr, std::uint32_t* atrLen);

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
  // Sends one command through the vendor's library. `response` comes in all zero, and its length
  // is not trusted afterwards. False if the library lacks the function or reports failure.
  virtual bool Exchange(const std::uint8_t* command, std::uint32_t length, Response& response);

  bool ExchangeOnce(const std::uint8_t* command, std::uint32_t length, Response& response);

  const ExchangeRules* const m_rules;
  const PortListing* const m_ports;
};

// Gives what an operation gives that enters a vendor's library, and 0 if anything is thrown in it.
template <typename Operation>
std::int32_t Guarded(Operation operation) noexcept {
  try {
    return platform::CallForeign(operation);
  } catch (...) {
    return 0;
  }
}

}  // namespace orvane
