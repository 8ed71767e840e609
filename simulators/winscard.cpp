/*
 * A simulated winscard: two readers, "Simulated Reader 0" with the virtual card in it and
 * "Simulated Reader 1" without one.
 *
 * SimulatorRestart forgets the card handles. Contexts stay, since a program keeps its context over
 * any number of cards, and so does memory that was handed out.
 *
 * The journal shows contexts, handles, control codes, attributes, states and results in
 * hexadecimal, and the header of SCardTransmit as its protocol (1 is T=0, 2 is T=1).
 *
 * What the data and length of a prepared answer mean:
 *   SCardEstablishContext   data: the context, most significant octet first
 *   SCardListReadersA       data: the multi-string with its zeros
 *   SCardConnectA,          data: one octet, the active protocol. With it and result 0 a
 *   SCardReconnect          connection is made, without it none; length: the handle
 *   SCardTransmit,          data: the reply
 *   SCardControl
 *   SCardGetAttrib,         data: the ATR
 *   SCardStatusA
 *   SCardGetStatusChangeA   data: the ATR in the first reader state; length: its event state
 */
#include <algorithm>
#include <cstring>
#include <vector>

#include "common/call.h"
#include "common/module.h"
#include "winscard_session.h"

using namespace winscard;
using simulator::Answer;
using simulator::Call;
using simulator::Card;
using simulator::CardPresent;
using simulator::Hex;
using simulator::Octets;

namespace {

constexpr const char* kReaders[] = {"Simulated Reader 0", "Simulated Reader 1"};
constexpr const char* kReaderWithCard = kReaders[0];
constexpr const char* kGroups[] = {"SCard$DefaultReaders", "SCard$AllReaders"};

Session session;
const simulator::AtRestart forgetConnections([] { session.ForgetConnections(); });

bool IsOneOf(const char* text, std::span<const char* const> choices) {
  for (const char* choice : choices) {
    if (std::strcmp(text, choice) == 0) return true;
  }
  return false;
}

Octets BigEndian(uint64_t number) {
  Octets octets(8);
  for (size_t i = octets.size(); i-- > 0; number >>= 8) octets[i] = static_cast<uint8_t>(number);
  return octets;
}

uint64_t Number(const Octets& octets) {
  uint64_t number = 0;
  for (const uint8_t octet : octets) number = number << 8 | octet;
  return number;
}

// Each text with its zero, and one zero more at the end.
Octets MultiString(std::span<const char* const> texts) {
  Octets octets;
  for (const char* text : texts) octets.insert(octets.end(), text, text + std::strlen(text) + 1);
  octets.push_back(0);
  return octets;
}

// The texts up to the empty one; none of a null pointer.
std::vector<const char*> Texts(const char* multiString) {
  std::vector<const char*> texts;
  for (; multiString && *multiString != '\0'; multiString += std::strlen(multiString) + 1) {
    texts.push_back(multiString);
  }
  return texts;
}

// Hands data over as the interface does it: a null area asks for the length alone, and
// kAutoAllocate has the library allocate the area. A prepared answer may say what it likes of its
// length, and goes into any area as far as it fits.
void HandOver(Call& call, Answer& answer, void* area, Dword* length) {
  if (!length || (!answer.data && !call.Prepared())) return;
  const size_t size = answer.data ? answer.data->size() : 0;
  size_t room = *length;
  if (room == kAutoAllocate && area && answer.data) {
    uint8_t* const memory = session.Allocate(size);
    std::memcpy(area, &memory, sizeof memory);
    area = memory;
    room = size;
  }
  if (area && size > room && !call.Prepared()) {
    answer.result = kInsufficientBuffer;
    room = 0;
  }
  *length = static_cast<Dword>(call.Write(answer, area, room));
}

Answer AskAtr(Handle handle) {
  if (const uint32_t code = session.Check(handle); code != kSuccess) return {code};
  return {kSuccess, Card().Atr()};
}

Answer AskCard(Handle handle, const uint8_t* command, Dword length) {
  if (const uint32_t code = session.Check(handle); code != kSuccess) return {code};
  if (!command) return {kInvalidParameter};
  return {kSuccess, Card().Transmit({command, length})};
}

Answer AskReaders(Context context, const std::vector<const char*>& groups) {
  if (context != 0 && !session.Knows(context)) return {kInvalidHandle};
  const auto known = [](const char* group) { return IsOneOf(group, kGroups); };
  if (!groups.empty() && std::none_of(groups.begin(), groups.end(), known))
    return {kNoReadersAvailable};
  return {kSuccess, MultiString(kReaders)};
}

Answer AskToConnect(Context context, const char* reader, Dword protocols) {
  if (!session.Knows(context)) return {kInvalidHandle};
  if (!reader) return {kInvalidParameter};
  if (!IsOneOf(reader, kReaders)) return {kUnknownReader};
  if (std::strcmp(reader, kReaderWithCard) != 0 || !CardPresent()) return {kRemovedCard};
  if (!(protocols & kProtocolT0)) return {kProtocolMismatch};
  return {kSuccess, Octets{kProtocolT0}};
}

// Fills one reader's state and tells whether it is news to the caller.
bool Observe(ReaderState& state) {
  Dword event = kStateUnknown;
  state.atrLength = 0;
  if (IsOneOf(state.reader, kReaders)) {
    const bool here = std::strcmp(state.reader, kReaderWithCard) == 0;
    event = here && CardPresent() ? kStatePresent : kStateEmpty;
    if (here) event |= simulator::CardMovements() << 16;
    if (event & kStatePresent) {
      const Octets atr = Card().Atr();
      std::memcpy(state.atr, atr.data(), atr.size());
      state.atrLength = static_cast<Dword>(atr.size());
    }
  }
  const bool news = event != (state.currentState & ~Dword{kStateChanged});
  state.eventState = news ? event | kStateChanged : event;
  return news;
}

// Where there is no news it does not wait: nothing could come while the caller is in here.
Answer AskForNews(Context context, ReaderState* states, Dword count) {
  if (!session.Knows(context)) return {kInvalidHandle};
  if (!states && count > 0) return {kInvalidParameter};
  bool news = false;
  for (ReaderState& state : std::span(states, count)) {
    if (!state.reader) return {kInvalidParameter};
    news = Observe(state) || news;
  }
  return {news ? kSuccess : kTimeout};
}

}  // namespace

extern "C" {

SIMULATOR_API extern const IoRequest g_rgSCardT0Pci = {kProtocolT0, sizeof(IoRequest)};
SIMULATOR_API extern const IoRequest g_rgSCardT1Pci = {kProtocolT1, sizeof(IoRequest)};
SIMULATOR_API extern const IoRequest g_rgSCardRawPci = {kProtocolRaw, sizeof(IoRequest)};

SIMULATOR_API Code SCardEstablishContext(Dword scope, const void*, const void*, Context* context) {
  Call call("SCardEstablishContext", {scope});
  const Answer answer = call.Ask([&] {
    return context ? Answer{kSuccess, BigEndian(session.Establish())} : Answer{kInvalidParameter};
  });
  if (answer.data && context) {
    *context = Number(*answer.data);
    call.Wrote(Hex(*context));
  }
  return call.ReturnHex<Code>(answer);
}

SIMULATOR_API Code SCardReleaseContext(Context context) {
  Call call("SCardReleaseContext", {Hex(context)});
  return call.ReturnHex<Code>(
      call.Ask([&] { return Answer{session.Release(context) ? kSuccess : kInvalidHandle}; }));
}

SIMULATOR_API Code SCardListReadersA(Context context, const char* groups, char* readers,
                                     Dword* length) {
  Call call("SCardListReadersA", {Hex(context)});
  const std::vector<const char*> names = Texts(groups);
  for (const char* name : names) call.With(name);
  Answer answer =
      call.Ask([&] { return length ? AskReaders(context, names) : Answer{kInvalidParameter}; });
  HandOver(call, answer, readers, length);
  return call.ReturnHex<Code>(answer);
}

SIMULATOR_API Code SCardFreeMemory(Context context, const void* memory) {
  Call call("SCardFreeMemory", {Hex(context)});
  return call.ReturnHex<Code>(
      call.Ask([&] { return Answer{session.Free(memory) ? kSuccess : kInvalidParameter}; }));
}

SIMULATOR_API Code SCardConnectA(Context context, const char* reader, Dword shareMode,
                                 Dword protocols, Handle* handle, Dword* protocol) {
  Call call("SCardConnectA", {Hex(context), reader, shareMode, protocols});
  const Answer answer = call.Ask([&] {
    return handle && protocol ? AskToConnect(context, reader, protocols)
                              : Answer{kInvalidParameter};
  });
  if (answer.result == kSuccess && answer.data && handle && protocol) {
    *protocol = static_cast<Dword>(Number(*answer.data));
    *handle = static_cast<Handle>(answer.Reported(static_cast<int64_t>(session.NextHandle())));
    session.Connect(*handle, context, *protocol);
    call.Wrote(Hex(*handle));
    call.Wrote(*protocol);
  }
  return call.ReturnHex<Code>(answer);
}

SIMULATOR_API Code SCardReconnect(Handle handle, Dword shareMode, Dword protocols,
                                  Dword initialization, Dword* protocol) {
  Call call("SCardReconnect", {Hex(handle), shareMode, protocols, initialization});
  const Answer answer = call.Ask([&]() -> Answer {
    if (const uint32_t code = session.Check(handle); code != kSuccess) return {code};
    if (!(protocols & kProtocolT0)) return {kProtocolMismatch};
    if (initialization != kLeaveCard) Card().Reset();
    return {kSuccess, Octets{kProtocolT0}};
  });
  if (answer.data && protocol) {
    *protocol = static_cast<Dword>(Number(*answer.data));
    call.Wrote(*protocol);
  }
  return call.ReturnHex<Code>(answer);
}

SIMULATOR_API Code SCardDisconnect(Handle handle, Dword disposition) {
  Call call("SCardDisconnect", {Hex(handle), disposition});
  return call.ReturnHex<Code>(call.Ask([&]() -> Answer {
    const bool cardIsThere = session.Check(handle) == kSuccess;
    if (!session.Disconnect(handle)) return {kInvalidHandle};
    if (cardIsThere && disposition != kLeaveCard) Card().Reset();
    return {kSuccess};
  }));
}

SIMULATOR_API Code SCardBeginTransaction(Handle handle) {
  Call call("SCardBeginTransaction", {Hex(handle)});
  return call.ReturnHex<Code>(call.Ask([&] { return Answer{session.Check(handle)}; }));
}

SIMULATOR_API Code SCardEndTransaction(Handle handle, Dword disposition) {
  Call call("SCardEndTransaction", {Hex(handle), disposition});
  return call.ReturnHex<Code>(call.Ask([&]() -> Answer {
    const uint32_t code = session.Check(handle);
    if (code == kSuccess && disposition != kLeaveCard) Card().Reset();
    return {code};
  }));
}

SIMULATOR_API Code SCardTransmit(Handle handle, const IoRequest* header, const uint8_t* command,
                                 Dword length, IoRequest*, uint8_t* reply, Dword* replyLength) {
  Call call("SCardTransmit", {Hex(handle), header ? header->protocol : 0, {command, length}});
  Answer answer = call.Ask([&]() -> Answer {
    if (!header || !reply || !replyLength) return {kInvalidParameter};
    const Dword protocol = session.Protocol(handle);
    if (protocol != 0 && protocol != header->protocol) return {kProtocolMismatch};
    return AskCard(handle, command, length);
  });
  HandOver(call, answer, reply, replyLength);
  return call.ReturnHex<Code>(answer);
}

SIMULATOR_API Code SCardControl(Handle handle, Dword control, const uint8_t* input, Dword length,
                                uint8_t* output, Dword outputSize, Dword* outputLength) {
  Call call("SCardControl", {Hex(handle), Hex(control), {input, length}});
  Answer answer = call.Ask([&]() -> Answer {
    if (!output || !outputLength) return {kInvalidParameter};
    if (control == kControlAtr) return AskAtr(handle);
    if (control == kControlExchange) return AskCard(handle, input, length);
    return {kUnsupportedFeature};
  });
  if (outputLength) *outputLength = outputSize;
  HandOver(call, answer, output, outputLength);
  return call.ReturnHex<Code>(answer);
}

SIMULATOR_API Code SCardGetAttrib(Handle handle, Dword attribute, uint8_t* value, Dword* length) {
  Call call("SCardGetAttrib", {Hex(handle), Hex(attribute)});
  Answer answer = call.Ask([&]() -> Answer {
    if (!length) return {kInvalidParameter};
    return attribute == kAttributeAtr ? AskAtr(handle) : Answer{kUnsupportedFeature};
  });
  HandOver(call, answer, value, length);
  return call.ReturnHex<Code>(answer);
}

SIMULATOR_API Code SCardGetStatusChangeA(Context context, Dword timeout, ReaderState* states,
                                         Dword count) {
  Call call("SCardGetStatusChangeA", {Hex(context), timeout});
  const std::span<ReaderState> asked(states, states ? count : 0);
  for (const ReaderState& state : asked) call.With(state.reader).With(Hex(state.currentState));
  const Answer answer = call.Ask([&] { return AskForNews(context, states, count); });
  if (call.Prepared() && !asked.empty()) {
    ReaderState& first = asked.front();
    first.eventState = static_cast<Dword>(answer.Reported(first.eventState));
    if (answer.data) {
      std::memcpy(first.atr, answer.data->data(), std::min(answer.data->size(), sizeof first.atr));
      first.atrLength = static_cast<Dword>(answer.data->size());
    }
  }
  if (answer.result == kSuccess || answer.result == kTimeout) {
    for (const ReaderState& state : asked) call.Wrote(Hex(state.eventState));
  }
  return call.ReturnHex<Code>(answer);
}

SIMULATOR_API Code SCardStatusA(Handle handle, char* reader, Dword* readerLength, Dword* state,
                                Dword* protocol, uint8_t* atr, Dword* atrLength) {
  Call call("SCardStatusA", {Hex(handle)});
  Answer answer = call.Ask([&] { return AskAtr(handle); });
  if (answer.result == kSuccess) {
    Answer name{kSuccess, MultiString({&kReaderWithCard, 1})};
    HandOver(call, name, reader, readerLength);
    if (state) *state = kCardSpecific;
    if (protocol) *protocol = session.Protocol(handle);
    if (name.result != kSuccess) answer = name;
  }
  HandOver(call, answer, atr, atrLength);
  return call.ReturnHex<Code>(answer);
}

SIMULATOR_API Code SCardLocateCardsA(Context context, const char* cards, ReaderState*, Dword) {
  Call call("SCardLocateCardsA", {Hex(context), cards});
  return call.ReturnHex<Code>(call.Ask([] { return Answer{kUnsupportedFeature}; }));
}

SIMULATOR_API Code SCardListCardsA(Context context, const uint8_t*, const void*, Dword, char*,
                                   Dword*) {
  Call call("SCardListCardsA", {Hex(context)});
  return call.ReturnHex<Code>(call.Ask([] { return Answer{kUnsupportedFeature}; }));
}

SIMULATOR_API Code SCardForgetCardTypeA(Context context, const char* card) {
  Call call("SCardForgetCardTypeA", {Hex(context), card});
  return call.ReturnHex<Code>(call.Ask([] { return Answer{kUnsupportedFeature}; }));
}

}  // extern "C"
