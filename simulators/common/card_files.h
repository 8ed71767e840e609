#pragma once

// The files of the virtual card and their content on a new card.

#include "common/octets.h"

namespace simulator {

// Who may write a transparent EF: the cardholder after the PIN, the issuer with its keys.
enum class Writer { kNobody, kCardholder, kIssuer };

// An elementary file (EF): either records or one transparent string of octets.
struct ElementaryFile {
  uint16_t identifier;
  uint8_t shortIdentifier;
  std::vector<Octets> records;  // empty in a transparent EF
  Octets content;               // only in a transparent EF
  Writer writer = Writer::kNobody;

  bool IsTransparent() const { return records.empty(); }
  Octets ControlInformation() const;
};

// A dedicated file (DF): the master file or an application.
struct DedicatedFile {
  uint16_t identifier;
  Octets name;                // the AID of an application
  Octets controlInformation;  // FCI, in a template 6F
  Octets processingOptions;   // the answer to GET PROCESSING OPTIONS; empty: none
  std::vector<ElementaryFile> files;
};

constexpr uint16_t kMasterFile = 0x3F00;

// The card's keys are derived from its serial number and the issuer's master keys: one to
// authenticate with, one for MACs. These master keys are public and protect nothing.
const Octets& SerialNumber();
// For the cards that are made from now on.
void SetSerialNumber(std::string_view digits);
constexpr std::string_view kFirstSerialNumber = "8099990000000042";
const Octets& AuthenticationMasterKey();  // 40 41 42 ... 4F
const Octets& MacMasterKey();             // 50 51 52 ... 5F

// The master file first, then the application:
//
//   3F00             master file
//     2F00  SFI 30   EF.DIR, records: the application's AID and label
//     2F02  SFI 2    EF.GDO, transparent: the card's serial number in a data object 5A
//     1001           payment application F04F5256414E4501
//       0101  SFI 1  records: track 2 and cardholder; primary account number and dates
//       0102  SFI 2  records: what the terminal has to give, how to verify the cardholder
//       0105  SFI 5  transparent, 64 octets of notes: the cardholder writes them
//       0106  SFI 6  transparent, 16 octets of limits: the issuer writes them
//
// Anybody may read every file.
std::vector<DedicatedFile> NewFiles();

}  // namespace simulator
