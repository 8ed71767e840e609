#include "common/virtual_card.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <thread>
#include <utility>

#include "common/card_key.h"

namespace simulator {
namespace {

constexpr int kTries = 3;
constexpr size_t kPinBlockSize = 8;
constexpr size_t kChallengeSize = kBlockSize;
constexpr size_t kMacSize = 4;
constexpr size_t kAll = 256;  // what Le 00 stands for

// ISO 9564 format 2: the digits 1234.
const Octets kPinBlock = FromHex("24 12 34 FF FF FF FF FF");

constexpr uint16_t kDone = 0x9000;
constexpr uint16_t kDataWaits = 0x6100;  // + the number of octets
constexpr uint16_t kNotAuthentic = 0x6300;
constexpr uint16_t kTriesLeft = 0x63C0;    // + the number of tries
constexpr uint16_t kExactLength = 0x6C00;  // + the right Le
constexpr uint16_t kWrongLength = 0x6700;
constexpr uint16_t kWrongFileStructure = 0x6981;
constexpr uint16_t kSecurityNotSatisfied = 0x6982;
constexpr uint16_t kMethodBlocked = 0x6983;
constexpr uint16_t kConditionsNotSatisfied = 0x6985;
constexpr uint16_t kNoCurrentFile = 0x6986;
constexpr uint16_t kMacMissing = 0x6987;
constexpr uint16_t kMacWrong = 0x6988;
constexpr uint16_t kWrongData = 0x6A80;
constexpr uint16_t kFileNotFound = 0x6A82;
constexpr uint16_t kRecordNotFound = 0x6A83;
constexpr uint16_t kNotEnoughSpace = 0x6A84;
constexpr uint16_t kWrongParameters = 0x6A86;
constexpr uint16_t kWrongOffset = 0x6B00;
constexpr uint16_t kInstructionUnknown = 0x6D00;
constexpr uint16_t kClassUnknown = 0x6E00;

constexpr uint8_t kInsGetResponse = 0xC0;

uint16_t WithCount(uint16_t word, size_t count) {
  return static_cast<uint16_t>(word | (count & 0xFF));
}

// What a command has in its data field. If the field is optional, P3 is its length.
enum class DataField { kNone, kNeeded, kOptional };

// A PIN block of format 2: 2, the number of digits (4 to 12), the digits, then F to the end.
bool IsPinBlock(const Octets& block) {
  const std::string nibbles = ToHex(block);
  const size_t digits = block[0] & 0x0F;
  if (nibbles[0] != '2' || digits < 4 || digits > 12) return false;
  const size_t filler = nibbles.find_first_not_of("0123456789", 2);
  return filler == 2 + digits && nibbles.find_first_not_of('F', filler) == std::string::npos;
}

// How long a command takes: ORVANE_CARD_TIME, in microseconds.
std::chrono::microseconds CommandTime() {
  static const char* const text = std::getenv("ORVANE_CARD_TIME");
  static const std::chrono::microseconds time(text != nullptr ? std::atoi(text) : 0);
  return time;
}

}  // namespace

struct VirtualCard::Command {
  uint8_t cla, ins, p1, p2;
  size_t expected;  // Le where there is no data, 1 to 256
  Octets data;

  // Empty if the octets are no command APDU of T=0.
  static std::optional<Command> Read(std::span<const uint8_t> octets) {
    constexpr size_t kHeader = 4;
    if (octets.size() < kHeader) return std::nullopt;
    Command command{octets[0], octets[1], octets[2], octets[3], kAll, {}};
    if (octets.size() == kHeader) return command;  // T=0 sends P3 00
    const size_t p3 = octets[kHeader];
    const auto body = octets.subspan(kHeader + 1);
    if (body.empty()) {
      if (p3 != 0) command.expected = p3;
      return command;
    }
    // P3 00 before data would begin an extended length, which T=0 does not have.
    if (p3 == 0 || body.size() < p3 || body.size() > p3 + 1) return std::nullopt;
    command.data.assign(body.begin(), body.begin() + static_cast<std::ptrdiff_t>(p3));
    return command;
  }

  bool Fits(DataField field) const {
    if (!data.empty()) return field != DataField::kNone;
    return field == DataField::kNone || (field == DataField::kOptional && expected == kAll);
  }

  bool IsGetResponse() const { return cla == 0x00 && ins == kInsGetResponse; }
};

struct VirtualCard::Response {
  Octets data;
  uint16_t statusWord;

  Response(uint16_t word) : statusWord(word) {}
  Response(Octets octets) : data(std::move(octets)), statusWord(kDone) {}

  // The answer with a unit that must be read whole, such as a record.
  static Response Whole(const Octets& unit, size_t expected) {
    if (expected == kAll || expected == unit.size()) return unit;
    return WithCount(kExactLength, unit.size());
  }

  // The answer with data that may be read in parts.
  static Response Part(std::span<const uint8_t> there, size_t expected) {
    if (expected != kAll && expected > there.size()) return WithCount(kExactLength, there.size());
    const auto part = there.first(std::min(expected, there.size()));
    return Octets(part.begin(), part.end());
  }

  Octets Join() const {
    Octets octets = data;
    octets.push_back(static_cast<uint8_t>(statusWord >> 8));
    octets.push_back(static_cast<uint8_t>(statusWord));
    return octets;
  }
};

struct VirtualCard::Instruction {
  uint8_t cla, ins;
  DataField dataField;
  Response (VirtualCard::*run)(const Command&);
};

VirtualCard::Response VirtualCard::Run(const Command& command) {
  static constexpr Instruction kInstructions[] = {
      {0x00, 0x20, DataField::kOptional, &VirtualCard::Verify},
      {0x00, 0x82, DataField::kNeeded, &VirtualCard::ExternalAuthenticate},
      {0x00, 0x84, DataField::kNone, &VirtualCard::GetChallenge},
      {0x00, 0xA4, DataField::kOptional, &VirtualCard::Select},
      {0x00, 0xB0, DataField::kNone, &VirtualCard::ReadBinary},
      {0x00, 0xB2, DataField::kNone, &VirtualCard::ReadRecord},
      {0x00, kInsGetResponse, DataField::kNone, &VirtualCard::GetResponse},
      {0x00, 0xD6, DataField::kNeeded, &VirtualCard::UpdateBinary},
      {0x04, 0xD6, DataField::kNeeded, &VirtualCard::UpdateBinaryUnderMac},
      {0x80, 0xA8, DataField::kNeeded, &VirtualCard::GetProcessingOptions},
  };
  uint16_t refusal = kClassUnknown;
  for (const Instruction& instruction : kInstructions) {
    if (instruction.cla != command.cla) continue;
    refusal = kInstructionUnknown;
    if (instruction.ins != command.ins) continue;
    return command.Fits(instruction.dataField) ? (this->*instruction.run)(command) : kWrongLength;
  }
  return refusal;
}

VirtualCard::VirtualCard() : files_(NewFiles()), triesLeft_(kTries) {}

// T=0 alone, so no check octet. The historical bytes: applications are selected by their full name;
// the card's maker.
std::vector<uint8_t> VirtualCard::Atr() const {
  return FromHex("3B 6A 00 00 80 31 80 66 4F5256414E45");
}

void VirtualCard::Reset() {
  EnterDirectory(0);
  challenge_.clear();
  waiting_.clear();
}

std::vector<uint8_t> VirtualCard::Transmit(std::span<const uint8_t> octets) {
  std::this_thread::sleep_for(CommandTime());
  const std::optional<Command> command = Command::Read(octets);
  if (!command || !command->IsGetResponse()) waiting_.clear();
  if (!command) return Response(kWrongLength).Join();
  Response response = Run(*command);
  if (command->data.empty() || response.data.empty()) return response.Join();
  waiting_ = std::move(response.data);
  return Response(WithCount(kDataWaits, waiting_.size())).Join();
}

VirtualCard::Response VirtualCard::Select(const Command& command) {
  constexpr uint8_t kByIdentifier = 0x00, kByName = 0x04;
  constexpr uint8_t kGiveInformation = 0x00, kGiveNothing = 0x0C;
  if (command.p2 != kGiveInformation && command.p2 != kGiveNothing) return kWrongParameters;
  Response response = kWrongParameters;
  if (command.p1 == kByName) response = SelectByName(command);
  if (command.p1 == kByIdentifier) response = SelectByIdentifier(command);
  if (command.p2 == kGiveNothing) response.data.clear();
  return response;
}

VirtualCard::Response VirtualCard::SelectByName(const Command& command) {
  if (command.data.empty()) return kWrongLength;
  for (size_t place = 0; place < files_.size(); ++place) {
    if (files_[place].name != command.data) continue;
    EnterDirectory(place);
    return files_[place].controlInformation;
  }
  return kFileNotFound;
}

// Without an identifier it selects the master file.
VirtualCard::Response VirtualCard::SelectByIdentifier(const Command& command) {
  if (!command.data.empty() && command.data.size() != 2) return kWrongLength;
  const int identifier =
      command.data.empty() ? kMasterFile : command.data[0] << 8 | command.data[1];
  for (const ElementaryFile& file : files_[directory_].files) {
    if (file.identifier != identifier) continue;
    EnterFile(file.shortIdentifier);
    return file.ControlInformation();
  }
  for (size_t place = 0; place < files_.size(); ++place) {
    if (files_[place].identifier != identifier) continue;
    EnterDirectory(place);
    return files_[place].controlInformation;
  }
  return kFileNotFound;
}

// Entering a directory, even the current one, ends verification and authentication.
void VirtualCard::EnterDirectory(size_t directory) {
  directory_ = directory;
  file_.reset();
  verified_ = false;
  authenticated_ = false;
}

bool VirtualCard::EnterFile(uint8_t shortIdentifier) {
  const auto& files = files_[directory_].files;
  for (size_t place = 0; place < files.size(); ++place) {
    if (files[place].shortIdentifier != shortIdentifier) continue;
    file_ = place;
    return true;
  }
  return false;
}

// If the first bit of P1 is set, P1 names a file of the current directory and P2 is the offset.
// Otherwise P1 and P2 are the offset in the current file.
uint16_t VirtualCard::LocateBinary(const Command& command, size_t& offset) {
  if (command.p1 & 0x80) {
    if (command.p1 & 0x60) return kWrongParameters;
    if (!EnterFile(command.p1 & 0x1F)) return kFileNotFound;
    offset = command.p2;
  } else {
    offset = static_cast<size_t>(command.p1) << 8 | command.p2;
  }
  if (!file_) return kNoCurrentFile;
  return CurrentFile().IsTransparent() ? kDone : kWrongFileStructure;
}

VirtualCard::Response VirtualCard::ReadBinary(const Command& command) {
  size_t offset = 0;
  if (const uint16_t word = LocateBinary(command, offset); word != kDone) return word;
  const std::span<const uint8_t> content = CurrentFile().content;
  if (offset >= content.size()) return kWrongOffset;
  return Response::Part(content.subspan(offset), command.expected);
}

VirtualCard::Response VirtualCard::UpdateBinary(const Command& command) {
  return Write(command, false);
}

VirtualCard::Response VirtualCard::UpdateBinaryUnderMac(const Command& command) {
  if (!authenticated_) return kSecurityNotSatisfied;
  if (command.data.size() <= kMacSize) return kMacMissing;
  const Octets challenge = TakeChallenge();
  if (challenge.empty()) return kConditionsNotSatisfied;

  Command plain = command;
  plain.data.resize(command.data.size() - kMacSize);
  Octets covered = plain.data;
  const auto length = static_cast<uint8_t>(command.data.size());
  covered.insert(covered.begin(), {command.cla, command.ins, command.p1, command.p2, length});
  const Octets mac = CardKey(MacMasterKey(), SerialNumber()).Mac(challenge, covered);
  authenticated_ =
      !mac.empty() && std::equal(command.data.end() - kMacSize, command.data.end(), mac.begin());
  return authenticated_ ? Write(plain, true) : kMacWrong;
}

VirtualCard::Response VirtualCard::Write(const Command& command, bool underMac) {
  size_t offset = 0;
  if (const uint16_t word = LocateBinary(command, offset); word != kDone) return word;
  const Writer writer = CurrentFile().writer;
  const bool allowed =
      (writer == Writer::kCardholder && verified_) || (writer == Writer::kIssuer && underMac);
  if (!allowed) return kSecurityNotSatisfied;
  Octets& content = CurrentFile().content;
  if (offset >= content.size()) return kWrongOffset;
  if (command.data.size() > content.size() - offset) return kNotEnoughSpace;
  std::copy(command.data.begin(), command.data.end(),
            content.begin() + static_cast<std::ptrdiff_t>(offset));
  return kDone;
}

// P2 is the short identifier of the file, or 0 for the current one, then 100 for "record P1".
VirtualCard::Response VirtualCard::ReadRecord(const Command& command) {
  const uint8_t shortIdentifier = command.p2 >> 3;
  if ((command.p2 & 0x07) != 0x04) return kWrongParameters;
  if (shortIdentifier != 0 && !EnterFile(shortIdentifier)) return kFileNotFound;
  if (!file_) return kNoCurrentFile;
  const ElementaryFile& file = CurrentFile();
  if (file.IsTransparent()) return kWrongFileStructure;
  if (command.p1 == 0 || command.p1 > file.records.size()) return kRecordNotFound;
  return Response::Whole(file.records[command.p1 - 1u], command.expected);
}

VirtualCard::Response VirtualCard::GetChallenge(const Command& command) {
  if (command.p1 != 0 || command.p2 != 0) return kWrongParameters;
  Octets challenge(command.expected == kAll ? kChallengeSize : command.expected);
  for (uint8_t& octet : challenge) octet = static_cast<uint8_t>(random_());
  challenge_ = challenge;
  return challenge;
}

// Uses the challenge up. Empty unless it has the size that cryptograms need.
Octets VirtualCard::TakeChallenge() {
  const Octets challenge = std::exchange(challenge_, {});
  return challenge.size() == kChallengeSize ? challenge : Octets();
}

VirtualCard::Response VirtualCard::ExternalAuthenticate(const Command& command) {
  if (command.p1 != 0 || command.p2 != 0) return kWrongParameters;
  if (files_[directory_].name.empty()) return kConditionsNotSatisfied;
  if (command.data.size() != kBlockSize) return kWrongLength;
  const Octets challenge = TakeChallenge();
  if (challenge.empty()) return kConditionsNotSatisfied;
  const CardKey key(AuthenticationMasterKey(), SerialNumber());
  authenticated_ = command.data == key.Encrypt(challenge);
  return authenticated_ ? kDone : kNotAuthentic;
}

// Without data it only asks: 9000 if the PIN is verified, else the tries left.
VirtualCard::Response VirtualCard::Verify(const Command& command) {
  constexpr uint8_t kPinOfTheApplication = 0x80;
  if (command.p1 != 0 || command.p2 != kPinOfTheApplication) return kWrongParameters;
  if (files_[directory_].name.empty()) return kConditionsNotSatisfied;
  if (triesLeft_ == 0) return kMethodBlocked;
  if (command.data.empty()) {
    return verified_ ? kDone : WithCount(kTriesLeft, static_cast<size_t>(triesLeft_));
  }
  if (command.data.size() != kPinBlockSize) return kWrongLength;
  if (!IsPinBlock(command.data)) return kWrongData;
  verified_ = command.data == kPinBlock;
  triesLeft_ = verified_ ? kTries : triesLeft_ - 1;
  return verified_ ? kDone : WithCount(kTriesLeft, static_cast<size_t>(triesLeft_));
}

VirtualCard::Response VirtualCard::GetResponse(const Command& command) {
  if (command.p1 != 0 || command.p2 != 0) return kWrongParameters;
  if (waiting_.empty()) return kConditionsNotSatisfied;
  Response response = Response::Part(waiting_, command.expected);
  waiting_.erase(waiting_.begin(),
                 waiting_.begin() + static_cast<std::ptrdiff_t>(response.data.size()));
  if (!response.data.empty() && !waiting_.empty()) {
    response.statusWord = WithCount(kDataWaits, waiting_.size());
  }
  return response;
}

// The data is what 9F38 in the FCI asks for, in a template 83: a country and a currency.
VirtualCard::Response VirtualCard::GetProcessingOptions(const Command& command) {
  constexpr size_t kAskedFor = 4;
  if (command.p1 != 0 || command.p2 != 0) return kWrongParameters;
  if (files_[directory_].processingOptions.empty()) return kConditionsNotSatisfied;
  if (command.data.size() != 2 + kAskedFor) return kWrongLength;
  if (command.data[0] != 0x83 || command.data[1] != kAskedFor) return kWrongData;
  return files_[directory_].processingOptions;
}

}  // namespace simulator
