#pragma once

// A small contact card with T=0 (ISO/IEC 7816-3 and 7816-4), to try commands without hardware.

#include <optional>
#include <random>

#include "common/card_files.h"
#include "common/smart_card.h"

namespace simulator {

// All new cards are equal: the files of NewFiles, the PIN 1234 with three tries, and the same
// sequence of challenges.
//
// The card answers as T=0 requires. A command APDU is a header of four octets, followed by nothing,
// by P3 = Le, by P3 = Lc and that many octets, or by these and Le. Other forms get 6700. The
// response to a command with data waits for GET RESPONSE (61xx); any other command drops it. Le 00
// reads all there is; too large an Le gets 6Cxx with the right one.
//
// The issuer authenticates with EXTERNAL AUTHENTICATE: the last challenge, encrypted with the
// card's authentication key. It then writes with UPDATE BINARY in class 04, with four octets of a
// MAC behind the data. The MAC covers header, Lc (which counts the MAC too) and data; its first
// chaining value is the last challenge. Each of the two commands needs a challenge of eight octets
// and uses it up, right or wrong. A wrong MAC ends the authentication.
class VirtualCard : public SmartCard {
 public:
  VirtualCard();

  Octets Atr() const override;

  // Forgets what was selected, verified or waiting. Written data and the number of tries stay.
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
  size_t directory_ = 0;        // current DF, an index into files_
  std::optional<size_t> file_;  // current EF, an index into that DF's files
  bool verified_ = false;       // the cardholder, with the PIN
  bool authenticated_ = false;  // the issuer, with its key
  Octets challenge_;            // empty after use
  int triesLeft_;
  Octets waiting_;  // the data that GET RESPONSE gives
  std::mt19937 random_;
};

}  // namespace simulator
