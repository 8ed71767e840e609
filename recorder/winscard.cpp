// The calls of the PC/SC interface. Each goes on to the library behind this module; those that
// reach a card are recorded.

#include "recorder/winscard.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "recorder/next.h"
#include "recorder/session.h"

using namespace winscard;
using namespace recorder;
using recordings::EventType;

namespace {

constexpr DWORD kReadAtrCode = SCARD_CTL_CODE(3000);
constexpr DWORD kExchangeCode = SCARD_CTL_CODE(3001);

std::string ProtocolName(DWORD protocol) {
  if (protocol == SCARD_PROTOCOL_T0) return "T=0";
  if (protocol == SCARD_PROTOCOL_T1) return "T=1";
  return protocol == SCARD_PROTOCOL_RAW ? "raw" : "";
}

std::string PowerName(DWORD disposition) {
  constexpr const char* kNames[] = {"kept", "warm reset", "cold reset", "ejected"};
  return disposition < std::size(kNames) ? kNames[disposition] : CodeText(disposition);
}

// The octets that a call has put into a buffer, never more than it had room for. If the library
// allocates, the buffer holds the pointer to them.
std::string Given(const void* buffer, DWORD room, const DWORD* length) {
  if (buffer == nullptr || length == nullptr) return "";
  if (room == SCARD_AUTOALLOCATE) return ToHex(*static_cast<const void* const*>(buffer), *length);
  return ToHex(buffer, std::min(room, *length));
}

// Splits response data and status word.
void SetResponse(Event& event, std::string digits) {
  if (digits.size() >= 4) {
    event.statusWord = digits.substr(digits.size() - 4);
    digits.resize(digits.size() - 4);
  }
  event.response = std::move(digits);
}

// The ATR that the service has; this asks no card.
std::string AtrOf(SCARDHANDLE card) {
  static const auto status =
      Next<LONG(SCARDHANDLE, char*, DWORD*, DWORD*, DWORD*, std::uint8_t*, DWORD*)>("SCardStatusA");
  char name[256];
  DWORD nameLength = sizeof name, state = 0, protocol = 0;
  std::uint8_t atr[36];
  DWORD atrLength = sizeof atr;
  if (status == nullptr ||
      status(card, name, &nameLength, &state, &protocol, atr, &atrLength) != SCARD_S_SUCCESS) {
    return "";
  }
  return Given(atr, sizeof atr, &atrLength);
}

// Makes a call and records its event. On success `fill` completes the event.
template <typename Call, typename Fill>
LONG Recorded(Event event, Call call, Fill fill) {
  const auto begin = Steady::now();
  const LONG code = call();
  const auto end = Steady::now();
  if (code == SCARD_S_SUCCESS) {
    fill(event);
  } else {
    event.failed = CodeText(static_cast<DWORD>(code));
  }
  Record(std::move(event), begin, end);
  return code;
}

}  // namespace

namespace recorder {

LONG Connect(std::string name, const std::function<LONG()>& connect, const SCARDHANDLE* card,
             const DWORD* protocol) {
  if (!Ready()) return kWriteFault;
  return Recorded(
      {.type = EventType::kOpen, .kind = "PC/SC", .name = std::move(name), .level = "wire"},
      connect, [&](Event& event) {
        if (card == nullptr) return;
        event.reader = AddReader(*card);
        event.atr = AtrOf(*card);
        if (protocol != nullptr) event.protocol = ProtocolName(*protocol);
      });
}

}  // namespace recorder

extern "C" {

extern RECORDER_API const SCARD_IO_REQUEST g_rgSCardT0Pci{SCARD_PROTOCOL_T0,
                                                          sizeof(SCARD_IO_REQUEST)};
extern RECORDER_API const SCARD_IO_REQUEST g_rgSCardT1Pci{SCARD_PROTOCOL_T1,
                                                          sizeof(SCARD_IO_REQUEST)};
extern RECORDER_API const SCARD_IO_REQUEST g_rgSCardRawPci{SCARD_PROTOCOL_RAW,
                                                           sizeof(SCARD_IO_REQUEST)};

RECORDER_API LONG SCardEstablishContext(DWORD scope, const void* reserved1, const void* reserved2,
                                        SCARDCONTEXT* context) {
  static const auto next = Next<decltype(SCardEstablishContext)>("SCardEstablishContext");
  if (next == nullptr) return kNoService;
  return Ready() ? next(scope, reserved1, reserved2, context) : kWriteFault;
}

RECORDER_API LONG SCardConnectA(SCARDCONTEXT context, const char* reader, DWORD shareMode,
                                DWORD protocols, SCARDHANDLE* card, DWORD* protocol) {
  static const auto next = Next<decltype(SCardConnectA)>("SCardConnectA");
  if (next == nullptr) return SCARD_E_UNSUPPORTED_FEATURE;
  return Connect(
      reader != nullptr ? ToUtf8(reader) : "",
      [&] { return next(context, reader, shareMode, protocols, card, protocol); }, card, protocol);
}

RECORDER_API LONG SCardReconnect(SCARDHANDLE card, DWORD shareMode, DWORD protocols,
                                 DWORD initialization, DWORD* protocol) {
  static const auto next = Next<decltype(SCardReconnect)>("SCardReconnect");
  if (next == nullptr) return SCARD_E_UNSUPPORTED_FEATURE;
  if (!Ready()) return kWriteFault;
  return Recorded(
      {.type = EventType::kReset, .reader = ReaderOf(card), .power = PowerName(initialization)},
      [&] { return next(card, shareMode, protocols, initialization, protocol); },
      [&](Event& event) {
        event.atr = AtrOf(card);
        if (protocol != nullptr) event.protocol = ProtocolName(*protocol);
      });
}

RECORDER_API LONG SCardDisconnect(SCARDHANDLE card, DWORD disposition) {
  static const auto next = Next<decltype(SCardDisconnect)>("SCardDisconnect");
  if (next == nullptr) return SCARD_E_UNSUPPORTED_FEATURE;
  return Recorded(
      {.type = EventType::kClose, .reader = ReaderOf(card), .power = PowerName(disposition)},
      [&] { return next(card, disposition); }, [](Event&) {});
}

RECORDER_API LONG SCardEndTransaction(SCARDHANDLE card, DWORD disposition) {
  static const auto next = Next<decltype(SCardEndTransaction)>("SCardEndTransaction");
  if (next == nullptr) return SCARD_E_UNSUPPORTED_FEATURE;
  if (disposition == SCARD_LEAVE_CARD) return next(card, disposition);
  return Recorded(
      {.type = EventType::kReset, .reader = ReaderOf(card), .power = PowerName(disposition)},
      [&] { return next(card, disposition); }, [&](Event& event) { event.atr = AtrOf(card); });
}

RECORDER_API LONG SCardTransmit(SCARDHANDLE card, const SCARD_IO_REQUEST* sendHeader,
                                const std::uint8_t* command, DWORD commandLength,
                                SCARD_IO_REQUEST* receiveHeader, std::uint8_t* reply,
                                DWORD* replyLength) {
  static const auto next = Next<decltype(SCardTransmit)>("SCardTransmit");
  if (next == nullptr) return SCARD_E_UNSUPPORTED_FEATURE;
  if (!Ready()) return kWriteFault;
  Event event{.type = EventType::kExchange, .reader = ReaderOf(card)};
  SetCommand(event, ToHex(command, commandLength));
  const DWORD room = replyLength != nullptr ? *replyLength : 0;
  return Recorded(
      std::move(event),
      [&] {
        return next(card, sendHeader, command, commandLength, receiveHeader, reply, replyLength);
      },
      [&](Event& done) { SetResponse(done, Given(reply, room, replyLength)); });
}

RECORDER_API LONG SCardControl(SCARDHANDLE card, DWORD controlCode, const void* in, DWORD inLength,
                               void* out, DWORD outRoom, DWORD* outLength) {
  static const auto next = Next<decltype(SCardControl)>("SCardControl");
  if (next == nullptr) return SCARD_E_UNSUPPORTED_FEATURE;
  if (!Ready()) return kWriteFault;
  Event event{.type = controlCode == kReadAtrCode    ? EventType::kAtr
                      : controlCode == kExchangeCode ? EventType::kExchange
                                                     : EventType::kControl,
              .reader = ReaderOf(card),
              .code = CodeText(controlCode)};
  SetCommand(event, ToHex(in, inLength));
  return Recorded(
      std::move(event),
      [&] { return next(card, controlCode, in, inLength, out, outRoom, outLength); },
      [&](Event& done) {
        const std::string given = Given(out, outRoom, outLength);
        if (done.type == EventType::kAtr) done.atr = given;
        if (done.type == EventType::kExchange) SetResponse(done, given);
        if (done.type == EventType::kControl) done.response = given;
      });
}

RECORDER_API LONG SCardGetAttrib(SCARDHANDLE card, DWORD attribute, std::uint8_t* value,
                                 DWORD* length) {
  static const auto next = Next<decltype(SCardGetAttrib)>("SCardGetAttrib");
  if (next == nullptr) return SCARD_E_UNSUPPORTED_FEATURE;
  const DWORD room = length != nullptr ? *length : 0;
  if (attribute != SCARD_ATTR_ATR_STRING || value == nullptr) {
    return next(card, attribute, value, length);
  }
  return Recorded(
      {.type = EventType::kAtr, .reader = ReaderOf(card)},
      [&] { return next(card, attribute, value, length); },
      [&](Event& event) { event.atr = Given(value, room, length); });
}

PASS_ON(SCardReleaseContext)
PASS_ON(SCardListReadersA)
PASS_ON(SCardFreeMemory)
PASS_ON(SCardGetStatusChangeA)
PASS_ON(SCardBeginTransaction)
PASS_ON(SCardStatusA)
PASS_ON(SCardLocateCardsA)
PASS_ON(SCardListCardsA)
PASS_ON(SCardForgetCardTypeA)

}  // extern "C"
