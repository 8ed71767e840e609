#include "host/reader_trouble.h"

#include <orvane.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <sstream>

#include "host/failure.h"
#include "host/platform.h"
#include "host/readers.h"
#include "host/text.h"

namespace host {
namespace {

using Code = uint32_t;
using Handle = uint64_t;

constexpr uint32_t kShared = 2;
constexpr uint32_t kAnyProtocol = 3;
constexpr uint32_t kLeaveCard = 0;
constexpr uint32_t kUnpowerCard = 2;
constexpr Code kUnsupported = 0x80100022;

enum class Then { kLeave, kPowerOffAndOn };

constexpr const char* kNoName = "no reader has this name";
constexpr const char* kNoNumber = "no reader has this number";

struct Meaning {
  Code code;
  const char* text;
};

constexpr std::array kMeanings = std::to_array<Meaning>({
    {0x80100009, kNoName},
    {0x8010000B, "another program holds the reader for itself"},
    {0x8010000C, "no card is in the reader"},
    {0x8010000F, "the card speaks neither T=0 nor T=1"},
    {0x80100017, "the reader is gone"},
    {0x8010001D, "the PC/SC service does not run"},
    {0x8010001E, "the PC/SC service does not run"},
    {kUnsupported, "the PC/SC library can't do that"},
    {0x8010002E, "no PC/SC reader is there"},
    {0x80100066, "the card in the reader is mute"},
    {0x80100067, "the card in the reader has no power"},
    {0x80100069, "no card is in the reader"},
    {0x8010006A, "this user may not use the reader"},
});

std::string Describe(Code code) {
  if (code == 0) return "";
  for (const Meaning& meaning : kMeanings) {
    if (meaning.code == code) return meaning.text;
  }
  std::ostringstream text;
  text << "PC/SC gives the code 0x" << std::hex << std::uppercase << code;
  return text.str();
}

template <typename Function>
Function* Find(void* module, const char* name) {
  return reinterpret_cast<Function*>(ModuleFunction(module, name));
}

// If only looking for trouble, a module that lacks functions is none.
Code Connect(void* module, Handle context, const char* reader, Then then) {
  const auto connect = Find<Code(Handle, const char*, uint32_t, uint32_t, Handle*, uint32_t*)>(
      module, "SCardConnectA");
  const auto reconnect =
      Find<Code(Handle, uint32_t, uint32_t, uint32_t, uint32_t*)>(module, "SCardReconnect");
  const auto disconnect = Find<Code(Handle, uint32_t)>(module, "SCardDisconnect");
  const bool powersOff = then == Then::kPowerOffAndOn;
  if (connect == nullptr || disconnect == nullptr || (powersOff && reconnect == nullptr)) {
    return powersOff ? kUnsupported : 0;
  }
  Handle card = 0;
  uint32_t protocol = 0;
  Code code = connect(context, reader, kShared, kAnyProtocol, &card, &protocol);
  if (code != 0) return code;
  if (powersOff) code = reconnect(card, kShared, kAnyProtocol, kUnpowerCard, &protocol);
  disconnect(card, kLeaveCard);
  return code;
}

// In the interface's layout.
struct ReaderState {
  const char* name;
  void* user = nullptr;
  uint32_t current = 0;
  uint32_t event = 0;
  uint32_t atrLength = 0;
  unsigned char atr[36] = {};
};

std::string Ask(const std::string& reader, Then then) {
  const FoundModule found = FindModule("winscard", Lookup::kByName);
  if (found.module == nullptr) {
    return "the library " + ModuleFileName("winscard") + " can't be loaded (" + found.message + ")";
  }
  const auto establish = Find<Code(uint32_t, const void*, const void*, Handle*)>(
      found.module, "SCardEstablishContext");
  const auto release = Find<Code(Handle)>(found.module, "SCardReleaseContext");
  if (establish == nullptr || release == nullptr) {
    return Describe(then == Then::kPowerOffAndOn ? kUnsupported : 0);
  }
  Handle context = 0;
  Code code = establish(0, nullptr, nullptr, &context);
  if (code != 0) return Describe(code);
  if (!reader.empty()) code = Connect(found.module, context, ToLibrary(reader).c_str(), then);
  release(context);
  return Describe(code);
}

// What PC/SC reports about the card in this reader; empty if the card answers. Orvane's library
// does not pass PC/SC's codes on. An empty name asks for the service alone.
std::string PcscTrouble(const std::string& reader) { return Ask(reader, Then::kLeave); }

// True for a decimal number from low to high, without a sign.
bool IsNumber(std::string_view text, unsigned low, unsigned high) {
  unsigned number = 0;
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return IsDecimal(text) && error == std::errc() && number >= low && number <= high;
}

bool IsIpv4Address(std::string_view text) {
  for (int part = 0; part < 3; ++part) {
    const size_t dot = text.find('.');
    if (dot == text.npos || !IsNumber(text.substr(0, dot), 0, 255)) return false;
    text.remove_prefix(dot + 1);
  }
  return IsNumber(text, 0, 255);
}

std::string WhyNotConnected(const ReaderAddress& address) {
  const std::vector<std::string> names = ListReaders(ReaderKindPcsc, 0);
  const std::string name = PcscName(address);
  if (names.empty()) return PcscReaders();
  if (std::find(names.begin(), names.end(), name) == names.end()) {
    return (address.port ? kNoNumber : kNoName) + std::string("; ") + PcscReaders();
  }
  const std::string trouble = PcscTrouble(name);
  return trouble.empty() ? "it did not open, but would now: try again" : trouble;
}

}  // namespace

std::string PcscName(const ReaderAddress& address) {
  if (!address.port) return address.name;
  const std::vector<std::string> names = ListReaders(ReaderKindPcsc, 0);
  const bool listed = *address.port > 0 && static_cast<size_t>(*address.port) <= names.size();
  return listed ? names[static_cast<size_t>(*address.port - 1)] : "";
}

void CheckMachine(const ReaderAddress& address) {
  if (address.kind != ReaderKindTcp) return;
  const size_t colon = address.name.find(':');
  const std::string machine = address.name.substr(0, colon);
  const auto refuse = [](const std::string& fault) {
    throw Failure(kReaderFault, fault + ": a payment HSM is named as in 10:10.0.0.5:8000");
  };
  if (address.port) refuse("a port has no address");
  if (!IsIpv4Address(machine)) refuse("\"" + Printable(machine) + "\" is no IPv4 address");
  if (colon == std::string::npos) refuse("an address has no port");
  const std::string port = address.name.substr(colon + 1);
  if (!IsNumber(port, 1, 65535)) refuse("\"" + Printable(port) + "\" is no port from 1 to 65535");
}

std::string PcscReaders() {
  std::string names;
  size_t port = 0;
  for (const std::string& name : ListReaders(ReaderKindPcsc, 0)) {
    names +=
        (names.empty() ? "" : ", ") + ("port " + std::to_string(++port)) + ' ' + Printable(name);
  }
  if (!names.empty()) return "there is: " + names;
  const std::string trouble = PcscTrouble("");
  return trouble.empty() ? "no PC/SC reader is there" : trouble;
}

std::string WhyNotOpened(const ReaderAddress& address) {
  const int32_t kind = address.kind;
  if (kind == ReaderKindPcsc) return WhyNotConnected(address);
  if (kind == ReaderKindTcp) return "nothing takes a connection there";
  if (kind == ReaderKindFm8201) return "readers of this kind never open";
  const FoundModule library = FindModule(KindLibrary(kind), KindLookup(kind));
  if (library.module == nullptr) {
    return "the library " + ModuleFileName(KindLibrary(kind)) + " can't be loaded (" +
           library.message + ")";
  }
  const bool byNameAlone = kind == ReaderKindWd || kind == ReaderKindIcr;
  if (address.port ? byNameAlone : !FitsKind(address)) {
    return "readers of this kind are named as in " + std::string(KindExample(kind));
  }
  return "its maker's library finds no reader there";
}

std::string CardTrouble(const ReaderAddress& address) {
  return address.kind == ReaderKindPcsc ? PcscTrouble(PcscName(address)) : "";
}

std::optional<CardMovements> AskForMovements(const ReaderAddress& address) {
  constexpr uint32_t kPresent = 0x20;
  if (address.kind != ReaderKindPcsc) return std::nullopt;
  const std::string name = ToLibrary(PcscName(address));
  void* const module = FindModule("winscard", Lookup::kByName).module;
  const auto establish =
      Find<Code(uint32_t, const void*, const void*, Handle*)>(module, "SCardEstablishContext");
  const auto release = Find<Code(Handle)>(module, "SCardReleaseContext");
  const auto ask =
      Find<Code(Handle, uint32_t, ReaderState*, uint32_t)>(module, "SCardGetStatusChangeA");
  Handle context = 0;
  if (establish == nullptr || release == nullptr || ask == nullptr ||
      establish(0, nullptr, nullptr, &context) != 0) {
    return std::nullopt;
  }
  ReaderState state{name.c_str()};
  const Code code = ask(context, 0, &state, 1);
  release(context);
  if (code != 0) return std::nullopt;
  return CardMovements{state.event >> 16, (state.event & kPresent) != 0};
}

std::string PowerOffAndOn(const std::string& reader) {
  return reader.empty() ? kNoNumber : Ask(reader, Then::kPowerOffAndOn);
}

}  // namespace host
