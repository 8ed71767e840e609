#pragma once

#include <array>
#include <cstdint>

namespace orvane {

constexpr std::uint32_t kReplySize = 256;

// One reply of a card, as a vendor's library gives it.
struct Reply {
  std::array<std::uint8_t, kReplySize> octets;
  std::uint32_t length;      // as the library reports it: it may lie
  std::uint16_t statusWord;  // where the library's result is the status word
};

// Where a driver finds the status word.
enum class StatusWordSource { kReplyEnd, kLibraryResult };

// What the host gets of a good reply.
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
  bool confirmsSecondEnd = false;  // the reply to GET RESPONSE must end in 9000 as well
};

}  // namespace orvane
