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
  std::uint32_t length;      // as the library reports it: may be wrong
  std::uint16_t statusWord;  // Exchange sets it if the library returns it
};

// Where a driver finds the status word.
enum class StatusWordSource { kResponseEnd, kLibraryResult };

// Which part of a good response the host gets.
enum class CopyRule {
  kWhole,
  kStrip  // without its status word; a lone status word is kept
};

// The differences between the drivers that exchange commands with a card.
struct ExchangeRules {
  StatusWordSource source;
  CopyRule copy;
  std::int32_t moreDataUnwanted;   // the result for 61xx when no response is asked for
  bool showsSecondStatus = false;  // a failed GET RESPONSE replaces the 61xx that the host gets
  bool confirmsSecondEnd = false;  // the response to GET RESPONSE must end in 9000 too
  std::uint32_t longestCommand = 4096;  // in octets; a longer one fails without a call
};

// What every driver offers. Results are 1 for success and 0 for failure unless a line says
// otherwise. A driver overrides only what its reader does differently, and derives from nothing
// else.
class CReaderToolBase {
 public:
  // `rules` is for a driver that exchanges commands with a card, `ports` for one that lists ports.
  explicit CReaderToolBase(const ExchangeRules* rules = nullptr, const PortListing* ports = nullptr)
      : m_rules(rules), m_ports(ports) {}
  CReaderToolBase(const CReaderToolBase&) = delete;
  CReaderToolBase& operator=(const CReaderToolBase&) = delete;
  virtual ~CReaderToolBase() = default;

  // Both fail unless overridden.
  virtual std::int32_t OpenByName(const char* name, std::int32_t kind);
  virtual std::int32_t OpenByPort(std::int32_t port, std::int32_t kind, std::int32_t baud);
  // Most drivers give 1 also when nothing was open; not overridden, it fails. Call it before the
  // destructor.
  virtual std::int32_t Close();
  // Gives the number of records written to list; orvane.h explains count and max.
  virtual std::int32_t ListReaders(std::int32_t kind, ReaderInfo* list, std::int32_t count,
                                   std::int32_t max);
  virtual std::int32_t GetKind();
  // Stores the slot.
  virtual void SetSlot(std::uint32_t slot);
  // Gives at most 256 octets of ATR. atr and atrLen may be null. Fails unless overridden.
  virtual std::int32_t ResetCard(std::uint8_t* atr, std::uint32_t* atrLen);
  // Sends the command through Exchange, follows a status word 61xx with one GET RESPONSE (ISO/IEC
  // 7816-4), and gives at most 4,096 octets of response by the driver's rules. A failed status word
  // is the first two octets of the response. resp may be null; respLen only if resp is. Allocates
  // nothing. Fails without rules.
  virtual std::int32_t Transmit(const std::uint8_t* cmd, std::uint32_t cmdLen, std::uint8_t* resp,
                                std::uint32_t* respLen);
  virtual std::int32_t GetOpenFlag();

 protected:
  // OpenByPort with the number behind the marker in the name. 0 if the marker is not there.
  std::int32_t OpenByPortBehind(std::string_view marker, const char* name, std::int32_t kind);

  // Ends a successful ResetCard: copies the ATR unless atr or atrLen is null. 0 if the library
  // reports more octets than the buffer holds.
  static std::int32_t GiveAtr(const Response& answer, std::uint8_t* atr, std::uint32_t* atrLen);

  // Sets m_szName, cut to its size.
  void SetName(std::string_view name);

  // Subtracts 1: hosts count ports from 1, the library from 0.
  static std::int32_t FromZero(std::int32_t port);

  // The low 32 bits of the library's handle, passed back with their sign extended; -1 is closed.
  std::int32_t m_nHandle = -1;
  std::int32_t m_nPort = -1;
  char m_szName[256] = {};
  std::uint64_t m_hContext = 0;
  std::uint32_t m_dwProtocol = 0;
  std::uint16_t m_wStatus = 0x9000;  // last status word, or last error code of the library
  std::int32_t m_nOpenFlag = 0;
  std::int32_t m_nKind = 0;
  std::int32_t m_nSlot = 0;

 private:
  // Sends one command through the vendor's library. `response` comes in all zero. The caller checks
  // the length that comes back. False if the library lacks the function or reports failure.
  virtual bool Exchange(const std::uint8_t* command, std::uint32_t length, Response& response);

  bool ExchangeOnce(const std::uint8_t* command, std::uint32_t length, Response& response);

  const ExchangeRules* const m_rules;
  const PortListing* const m_ports;
};

// Gives the result of an operation that enters a vendor's library; 0 if anything is thrown in it.
template <typename Operation>
std::int32_t Guarded(Operation operation) noexcept {
  try {
    return platform::CallForeign(operation);
  } catch (...) {
    return 0;
  }
}

}  // namespace orvane
