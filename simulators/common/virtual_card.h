#pragma once

// A small contact card with T=0 (ISO/IEC 7816-3 and 7816-4): no hardware is needed to try commands.

#include <optional>
#include <random>

#include "common/card_files.h"
#include "common/smart_card.h"

namespace simulator {

// Every new card is the same: the files of NewFiles, the PIN 1234 with three tries, and the same
// sequence of challenges.
//
// It answers as a card with T=0 does. A command APDU has a header of four octets and then nothing,
// P3 = Le, P3 = Lc with that many octets, or these and Le; other forms get 6700. A response to a
// command that brought data waits for GET RESPONSE (61xx); any other command drops it. Reading with
// Le 00 gives all there is, and too large an Le is corrected (6Cxx).
//
// The issuer authenticates with EXTERNAL AUTHENTICATE: the last challenge, encrypted with the
// card's authentication key. It then writes with UPDATE BINARY in class 04, where four octets of a
// MAC stand behind the data. The MAC goes over header, Lc (which counts the MAC as well) and data,
// and has the last challenge as its starting value. Either command takes a challenge of eight
// octets and uses it up, be it right or wrong; a wrong MAC ends the authentication.
class VirtualCard : public SmartCard {
 public:
  VirtualCard();

  Octets Atr() const override;

  // Forgets what was selected, verified or waiting. What was written stays, and so does the number
  // of tries.
  void Reset() override;

  // At most 258 octets.
  Octets Transmit(std::span<const uint8_t> octets) override;

 private:
  struct Command;
  struct Response;
  struct Instruction;

  Response Run(const Command& command);
  Response Select(const Command& command);
  Response ReadBinary(const Command& command);
  Response UpdateBinary(const Command& command);
  Response UpdateBinaryUnderMac(const Command& command);
  Response ReadRecord(const Command& command);
  Response GetChallenge(const Command& command);
  Response ExternalAuthenticate(const Command& command);
  Response Verify(const Command& command);
  Response GetResponse(const Command& command);
  Response GetProcessingOptions(const Command& command);

  Response SelectByName(const Command& command);
  Response SelectByIdentifier(const Command& command);
  void EnterDirectory(size_t directory);
  bool EnterFile(uint8_t shortIdentifier);
  uint16_t LocateBinary(const Command& command, size_t& offset);
  Response Write(const Command& command, bool underMac);
  Octets TakeChallenge();
  ElementaryFile& CurrentFile() { return files_[directory_].files[*file_]; }

  std::vector<DedicatedFile> files_;
  size_t directory_ = 0;        // current DF, a place in files_
  std::optional<size_t> file_;  // current EF, a place in that DF
  bool verified_ = false;       // the cardholder, with the PIN
  bool authenticated_ = false;  // the issuer, with its key
  Octets challenge_;            // empty when it has been used
  int triesLeft_;
  Octets waiting_;  // for GET RESPONSE
  std::mt19937 random_;
};

}  // namespace simulator
