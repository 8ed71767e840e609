#include "host/readers.h"

#include <orvane.h>

#include <algorithm>
#include <filesystem>

#include "host/failure.h"
#include "host/platform.h"
#include "host/reader_trouble.h"
#include "host/replay.h"
#include "host/session_recorder.h"
#include "host/text.h"

namespace host {
namespace {

constexpr int32_t kBaudRate = 9600;
constexpr int32_t kMostListed = 64;
constexpr int32_t kNoKind = -1;
constexpr const char* kSimulatedReader = "3:Simulated Reader 0";

// The library looks for this module in its own folder alone, so no simulator can be loaded in its
// place. Listing makes the library load it, whichever it is.
bool WdIsSimulated() {
  ListReaders(ReaderKindWd, 0);
  return LoadedModuleExports("wdcrwx", "SimulatorRestart");
}

// Beside the program, or else in the installation.
std::filesystem::path SimulatorFile(int32_t kind) {
  const std::string file = ModuleFileName(KindLibrary(kind));
  auto beside = ProgramFolder() / "simulators" / file;
  std::error_code error;
  if (std::filesystem::exists(beside, error)) return beside;
  return ModulesFolder() / "simulators" / file;
}

std::optional<std::string> ReadAtr() {
  std::array<char, 1025> atr{};
  return Reset(atr.data()) != 0 ? std::optional<std::string>(atr.data()) : std::nullopt;
}

}  // namespace

// WD's simulator is not loaded here: it stands beside the library.
void LoadSimulator(int32_t kind) {
  if (KindLibrary(kind).empty() || kind == ReaderKindWd) return;
  const std::filesystem::path module = SimulatorFile(kind);
  if (void* const simulator = LoadModule(module)) {
    ReplayIn(kind, simulator);
    if (kind == ReaderKindPcsc) PutRecorderFirst();
    return;
  }
  std::error_code error;
  if (std::filesystem::exists(module, error)) {
    throw Failure(kReaderFault, "can't load the simulator " + module.string());
  }
  throw Failure(kReaderFault, "there is no simulator " + module.filename().string() + " in " +
                                  (ProgramFolder() / "simulators").string() + " or " +
                                  module.parent_path().string());
}

void FeedSimulator(int32_t kind, const std::string& serialNumber) {
  if (KindLibrary(kind).empty()) return;
  void* const module = kind == ReaderKindWd ? FindModule("wdcrwx", Lookup::kBesideLibrary).module
                                            : LoadModule(SimulatorFile(kind));
  if (module == nullptr) return;
  if (void* const feed = ModuleFunction(module, "SimulatorFeedCard")) {
    reinterpret_cast<void (*)(const char*)>(feed)(serialNumber.c_str());
  }
}

std::vector<std::string> ListReaders(int32_t kind, int32_t ports) {
  // Room for the most that any kind writes: the ports and one USB reader, or 16, or the limit.
  std::vector<ReaderInfo> list(static_cast<size_t>(std::max(ports + 1, kMostListed)));
  const int32_t limit = static_cast<int32_t>(list.size());
  const int32_t count = GetReaderList(kind, list.data(), ports, limit);
  std::vector<std::string> names;
  names.reserve(list.size());
  for (int32_t at = 0; at < count; ++at)
    names.push_back(FromLibrary(list[static_cast<size_t>(at)].name));
  return names;
}

std::string IdentityOf(ReaderAddress address) {
  const bool pcsc = address.kind == ReaderKindPcsc;
  if (!address.port && (pcsc || address.name != WithoutBlanks(address.name))) {
    const std::vector<std::string> listed = ListReaders(address.kind, 0);
    address.name = MatchReaderName(address.name, listed);
    const auto found = std::find(listed.begin(), listed.end(), address.name);
    if (pcsc && found != listed.end()) {
      address.port = static_cast<int32_t>(found - listed.begin()) + 1;
    }
  }
  if (address.kind == ReaderKindS5009Ats) address.kind = ReaderKindS5009;
  std::string what = address.name;
  if (address.kind == ReaderKindWd) what.erase(0, 2);  // its library does not get these
  if (const std::optional<int32_t> port = OpenedPort(address)) what = std::to_string(*port);
  return std::to_string(address.kind) + ':' + what;
}

void Readers::CloseAll() {
  for (size_t number = 0; number < places_.size(); ++number) {
    if (!places_[number] || !places_[number]->open) continue;
    SetReader(static_cast<uint32_t>(number));
    Close(*places_[number]);
  }
}

int32_t Readers::CurrentKind() const {
  if (places_[current_]) return places_[current_]->address.kind;
  if (!used_ && simulate_) return ReaderKindPcsc;
  if (used_ || defaultReader_.empty()) return defaultKind_;
  return ReadReaderAddress(defaultReader_, defaultKind_).kind;
}

Framing Readers::CurrentFraming() const { return FramingOf(CurrentKind()); }

void Readers::PrepareLists() const {
  if (!simulate_) return;
  for (const int32_t kind : ReaderKinds()) LoadSimulator(kind);
}

bool Readers::Simulated() const {
  const int32_t kind = CurrentKind();
  if (kind == ReaderKindWd) return WdIsSimulated();
  return simulate_ && kind != ReaderKindTcp;
}

void Readers::Select(std::string_view number) {
  current_ = ReadReaderNumber(number);
  SetReader(static_cast<uint32_t>(current_));
}

ReaderAddress Readers::OpenDefault() {
  const auto open = [this](const std::string& text) {
    ReaderAddress opened = OpenAddress(text);
    used_ = true;
    return opened;
  };
  if (simulate_) return open(kSimulatedReader);
  if (!defaultReader_.empty()) return open(defaultReader_);
  const std::vector<std::string> listed =
      defaultKind_ == ReaderKindPcsc ? ListReaders(ReaderKindPcsc, 0) : std::vector<std::string>();
  if (listed.size() == 1) return open("3:" + listed[0]);
  throw Failure(kReaderFault, "no reader is named, by -r, @OPENREADER or ORVANE_READER; " +
                                  PcscReaders() + "; --simulate runs on a simulated card");
}

ReaderAddress Readers::Open(std::string_view text) {
  used_ = true;
  return OpenAddress(text);
}

// Once per reader: a script may close and open a reader and go on with its card.
void Readers::ColdResetOnce(const ReaderAddress& address) {
  if (!coldReset_) return;
  if (address.kind != ReaderKindPcsc) {
    throw Failure(kReaderFault,
                  "can't open the reader " + address.Shown() +
                      ": --cold-reset works through PC/SC alone, not with readers of the kind " +
                      std::string(KindName(address.kind)));
  }
  const std::string name = PcscName(address);
  if (coldResets_.contains(name)) return;
  const std::string trouble = PowerOffAndOn(name);
  if (!trouble.empty()) {
    throw Failure(kReaderFault,
                  "can't cold-reset the card in the reader " + address.Shown() + ": " + trouble);
  }
  coldResets_.insert(name);
}

ReaderAddress Readers::OpenAddress(std::string_view text) {
  ReaderAddress address = ReadReaderAddress(text, defaultKind_);
  if (simulate_) LoadSimulator(address.kind);
  if (simulate_ && address.kind == ReaderKindWd && !WdIsSimulated()) {
    throw Failure(kReaderFault,
                  "beside Orvane's library stands no simulator of WD's: nothing is opened");
  }
  if (simulate_ && address.kind == ReaderKindWd) {
    ReplayIn(address.kind, FindModule("wdcrwx", Lookup::kBesideLibrary).module);
  }
  CheckMachine(address);
  std::optional<Place>& place = places_[current_];
  const bool again = place && place->address.kind == address.kind;
  if (place) Close(*place);
  place.reset();
  if (!address.port) address.name = MatchReaderName(address.name, ListReaders(address.kind, 0));
  ColdResetOnce(address);
  if (!Connect(address, again)) {
    throw Failure(kReaderFault,
                  "can't open the reader " + address.Shown() + ": " + WhyNotOpened(address));
  }
  place = Place{address, true, ""};
  return address;
}

// After a restart of the PC/SC service, the driver's old connection to it is useless. Opening a
// kind that does not exist drops that driver.
bool Readers::Connect(const ReaderAddress& address, bool again) {
  const auto open = [&] {
    return (address.port ? OpenReader(*address.port, address.kind, kBaudRate)
                         : OpenReaderA(ToLibrary(address.name).c_str(), address.kind)) != 0;
  };
  if (open()) return true;
  if (!again || address.kind != ReaderKindPcsc) return false;
  OpenReader(0, kNoKind, kBaudRate);
  return open();
}

void Readers::Close(Place& place) {
  if (place.open) CloseReader();
  place.open = false;
}

bool Readers::Reopen(Place& place) {
  Close(place);
  place.open = Connect(place.address, true);
  if (place.open && !place.slot.empty()) ChangeSlot(place.slot.c_str());
  return place.open;
}

Readers::Place& Readers::Use() {
  std::optional<Place>& place = places_[current_];
  if (!place) {
    throw Failure(kReaderFault, "reader " + std::to_string(current_) +
                                    " is not open: open it with @OPENREADER(...)");
  }
  if (!place->open && !Reopen(*place)) {
    throw Failure(kReaderFault, "can't open the reader " + place->address.Shown() +
                                    " again: " + WhyNotOpened(place->address));
  }
  return *place;
}

void Readers::ChooseSlot(const std::string& slot) {
  Place& place = Use();
  // The library reads a single digit as the high half: "1" would be slot 16.
  if (slot.size() != 2 || !IsHexDigit(slot[0]) || !IsHexDigit(slot[1])) {
    throw Failure(kScriptFault, "a slot is two hexadecimal digits, such as 00 or 0C, not \"" +
                                    Printable(slot) + "\"");
  }
  ChangeSlot(slot.c_str());
  place.slot = slot;
}

std::string Readers::ResetCard() {
  Place& place = Use();
  std::optional<std::string> atr = ReadAtr();
  if (!atr && place.address.kind == ReaderKindPcsc && Reopen(place)) atr = ReadAtr();
  if (atr) return *atr;
  const std::string trouble = CardTrouble(place.address);
  throw Failure(kReaderFault,
                "no answer to reset: " + (trouble.empty() ? "is a card in the reader?" : trouble));
}

void Readers::Check(const CardCommand& command) {
  const int32_t kind = Use().address.kind;
  if (const std::string fault = TooLong(command, kind); !fault.empty()) {
    throw Failure(kScriptFault, fault);
  }
}

Response Readers::Send(const CardCommand& command) {
  Place& place = Use();
  const int32_t kind = place.address.kind;
  std::array<char, 8193> text{};
  const int32_t length = static_cast<int32_t>(command.digits.size());
  const int32_t result = SendCommand(command.digits.c_str(), length, text.data());
  if (const std::optional<Response> response = ReadResponse(kind, result, text.data()))
    return *response;
  if (kind == ReaderKindTcp) {
    Close(place);
    throw Failure(kReaderFault,
                  "no answer from the payment HSM; its connection is closed, so that an "
                  "answer that comes late is not taken for the next command's, and the next "
                  "command opens it afresh");
  }
  std::string trouble = CardTrouble(place.address);
  if (trouble.empty()) trouble = TooMuchAsked(command, kind);
  if (trouble.empty() && kind == ReaderKindPcsc) {
    trouble = "if another program has reset the card, @reset() brings it back";
  }
  throw Failure(kReaderFault,
                "no answer from the card or its reader" + (trouble.empty() ? "" : ": " + trouble));
}

}  // namespace host
