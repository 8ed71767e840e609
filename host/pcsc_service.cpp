#include "host/pcsc_service.h"

#include <array>
#include <cstdint>
#include <sstream>

#include "host/platform.h"

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

struct Meaning {
  Code code;
  const char* text;
};

constexpr std::array kMeanings = std::to_array<Meaning>({
    {0x80100009, "no reader has this name"},
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

// A module that lacks functions is no trouble where nothing but trouble is looked for.
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

}  // namespace

std::string PcscTrouble(const std::string& reader) { return Ask(reader, Then::kLeave); }

std::string PowerOffAndOn(const std::string& reader) {
  return reader.empty() ? "no reader has this number" : Ask(reader, Then::kPowerOffAndOn);
}

}  // namespace host
