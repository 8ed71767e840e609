/*
 * A simulated winscard: two readers, "Simulated Reader 0" with the virtual card and "Simulated
 * Reader 1" without a card. A replayed recording adds the readers that it names, with the card in
 * them.
 *
 * SimulatorRestart forgets the card handles. Contexts stay, since a program keeps its context over
 * many cards, and so does memory that was given out.
 *
 * The journal shows contexts, handles, control codes, attributes, states and results in
 * hexadecimal, and the header of SCardTransmit as its protocol (1 is T=0, 2 is T=1).
 *
 * What the data and length of a prepared answer mean:
 *   SCardEstablishContext   data: the context, most significant octet first
 *   SCardListReadersA       data: the multi-string with its zeros
 *   SCardConnectA,          data: one octet, the active protocol. With it and result 0 this
 *   SCardReconnect          makes a connection, without it none; length: the handle
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
constexpr const char* kReaderWithoutCard = kReaders[1];
constexpr const char* kGroups[] = {"SCard$DefaultReaders", "SCard$AllReaders"};
constexpr DWORD kAtrCode = SCARD_CTL_CODE(3000);
constexpr DWORD kExchangeCode = SCARD_CTL_CODE(3001);
constexpr DWORD kSpecific = 6;  // the card's state in SCardStatusA

Session session;
const simulator::AtRestart forgetConnections([] { session.ForgetConnections(); });

bool IsOneOf(const char* text, std::span<const char* const> choices) {
  for (const char* choice : choices) {
    if (std::strcmp(text, choice) == 0) return true;
  }
  return false;
}

// The readers that a recording names come first. All but one have the card in them.
std::vector<const char*> Readers() {
  static std::vector<std::string> recorded;
  recorded = simulator::RecordedReaders();
  std::vector<const char*> readers;
  readers.reserve(recorded.size() + std::size(kReaders));
  for (const std::string& name : recorded) readers.push_back(name.c_str());
  for (const char* name : kReaders) {
    if (!IsOneOf(name, readers)) readers.push_back(name);
  }
  return readers;
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

// Each text with its terminator, then one more zero.
Octets MultiString(std::span<const char* const> texts) {
  Octets octets;
  for (const char* text : texts) octets.insert(octets.end(), text, text + std::strlen(text) + 1);
  octets.push_back(0);
  return octets;
}

// The texts up to the empty one; none for a null pointer.
std::vector<const char*> Texts(const char* multiString) {
  std::vector<const char*> texts;
  for (; multiString && *multiString != '\0'; multiString += std::strlen(multiString) + 1) {
    texts.push_back(multiString);
  }
  return texts;
}

// Writes data by the interface's rules: a null area asks for the length alone; with
// SCARD_AUTOALLOCATE the library allocates the area. A prepared answer may report any length, and
// is cut to the area.
void HandOver(Call& call, Answer& answer, void* area, DWORD* length) {
  if (!length || (!answer.data && !call.Prepared())) return;
  const size_t size = answer.data ? answer.data->size() : 0;
  size_t room = *length;
  if (room == SCARD_AUTOALLOCATE && area && answer.data) {
    uint8_t* const memory = session.Allocate(size);
    std::memcpy(area, &memory, sizeof memory);
    area = memory;
    room = size;
  }
  if (area && size > room && !call.Prepared()) {
    answer.result = SCARD_E_INSUFFICIENT_BUFFER;
    room = 0;
  }
  *length = static_cast<DWORD>(call.Write(answer, area, room));
}

Answer AskAtr(SCARDHANDLE handle) {
  if (const LONG code = session.Check(handle); code != SCARD_S_SUCCESS) return {code};
  return {SCARD_S_SUCCESS, Card().Atr()};
}

Answer AskCard(SCARDHANDLE handle, const uint8_t* command, DWORD length) {
  if (const LONG code = session.Check(handle); code != SCARD_S_SUCCESS) return {code};
  if (!command) return {SCARD_E_INVALID_PARAMETER};
  Octets response = Card().Transmit({command, length});
  if (response.empty()) return {static_cast<LONG>(Card().FailureCode())};
  return {SCARD_S_SUCCESS, std::move(response)};
}

Answer AskReaders(SCARDCONTEXT context, const std::vector<const char*>& groups) {
  if (context != 0 && !session.Knows(context)) return {ERROR_INVALID_HANDLE};
  const auto known = [](const char* group) { return IsOneOf(group, kGroups); };
  if (!groups.empty() && std::none_of(groups.begin(), groups.end(), known))
    return {SCARD_E_NO_READERS_AVAILABLE};
  return {SCARD_S_SUCCESS, MultiString(Readers())};
}

Answer AskToConnect(SCARDCONTEXT context, const char* reader, DWORD protocols) {
  if (!session.Knows(context)) return {ERROR_INVALID_HANDLE};
  if (!reader) return {SCARD_E_INVALID_PARAMETER};
  if (!IsOneOf(reader, Readers())) return {SCARD_E_UNKNOWN_READER};
  if (std::strcmp(reader, kReaderWithoutCard) == 0 || !CardPresent()) return {SCARD_W_REMOVED_CARD};
  if (!(protocols & SCARD_PROTOCOL_T0)) return {SCARD_E_PROTO_MISMATCH};
  return {SCARD_S_SUCCESS, Octets{SCARD_PROTOCOL_T0}};
}

// Fills one reader's state. True if it differs from what the caller knows.
bool Observe(SCARD_READERSTATEA& state) {
  DWORD event = SCARD_STATE_UNKNOWN;
  state.cbAtr = 0;
  if (IsOneOf(state.szReader, Readers())) {
    const bool here = std::strcmp(state.szReader, kReaderWithoutCard) != 0;
    event = here && CardPresent() ? SCARD_STATE_PRESENT : SCARD_STATE_EMPTY;
    if (here) event |= simulator::CardMovements() << 16;
    if (event & SCARD_STATE_PRESENT) {
      const Octets atr = Card().Atr();
      std::memcpy(state.rgbAtr, atr.data(), atr.size());
      state.cbAtr = static_cast<DWORD>(atr.size());
    }
  }
  const bool news = event != (state.dwCurrentState & ~SCARD_STATE_CHANGED);
  state.dwEventState = news ? event | SCARD_STATE_CHANGED : event;
  return news;
}

// Never waits: while the caller is in here, nothing can change.
Answer AskForNews(SCARDCONTEXT context, SCARD_READERSTATEA* states, DWORD count) {
  if (!session.Knows(context)) return {ERROR_INVALID_HANDLE};
  if (!states && count > 0) return {SCARD_E_INVALID_PARAMETER};
  bool news = false;
  for (SCARD_READERSTATEA& state : std::span(states, count)) {
    if (!state.szReader) return {SCARD_E_INVALID_PARAMETER};
    news = Observe(state) || news;
  }
  return {news ? SCARD_S_SUCCESS : SCARD_E_TIMEOUT};
}

}  // namespace

extern "C" {

SIMULATOR_API extern const SCARD_IO_REQUEST g_rgSCardT0Pci = {SCARD_PROTOCOL_T0,
                                                              sizeof(SCARD_IO_REQUEST)};
SIMULATOR_API extern const SCARD_IO_REQUEST g_rgSCardT1Pci = {SCARD_PROTOCOL_T1,
                                                              sizeof(SCARD_IO_REQUEST)};
SIMULATOR_API extern const SCARD_IO_REQUEST g_rgSCardRawPci = {SCARD_PROTOCOL_RAW,
                                                               sizeof(SCARD_IO_REQUEST)};

SIMULATOR_API LONG SCardEstablishContext(DWORD scope, const void*, const void*,
                                         SCARDCONTEXT* context) {
  Call call("SCardEstablishContext", {scope});
  const Answer answer = call.Ask([&] {
    return context ? Answer{SCARD_S_SUCCESS, BigEndian(session.Establish())}
                   : Answer{SCARD_E_INVALID_PARAMETER};
  });
  if (answer.data && context) {
    *context = Number(*answer.data);
    call.Wrote(Hex(*context));
  }
  return call.ReturnHex<LONG>(answer);
}

SIMULATOR_API LONG SCardReleaseContext(SCARDCONTEXT context) {
  Call call("SCardReleaseContext", {Hex(context)});
  return call.ReturnHex<LONG>(call.Ask(
      [&] { return Answer{session.Release(context) ? SCARD_S_SUCCESS : ERROR_INVALID_HANDLE}; }));
}

SIMULATOR_API LONG SCardListReadersA(SCARDCONTEXT context, const char* groups, char* readers,
                                     DWORD* length) {
  Call call("SCardListReadersA", {Hex(context)});
  const std::vector<const char*> names = Texts(groups);
  for (const char* name : names) call.With(name);
  Answer answer = call.Ask(
      [&] { return length ? AskReaders(context, names) : Answer{SCARD_E_INVALID_PARAMETER}; });
  HandOver(call, answer, readers, length);
  return call.ReturnHex<LONG>(answer);
}

SIMULATOR_API LONG SCardFreeMemory(SCARDCONTEXT context, const void* memory) {
  Call call("SCardFreeMemory", {Hex(context)});
  return call.ReturnHex<LONG>(call.Ask(
      [&] { return Answer{session.Free(memory) ? SCARD_S_SUCCESS : SCARD_E_INVALID_PARAMETER}; }));
}

SIMULATOR_API LONG SCardConnectA(SCARDCONTEXT context, const char* reader, DWORD shareMode,
                                 DWORD protocols, SCARDHANDLE* handle, DWORD* protocol) {
  Call call("SCardConnectA", {Hex(context), reader, shareMode, protocols});
  const Answer answer = call.Ask([&] {
    return handle && protocol ? AskToConnect(context, reader, protocols)
                              : Answer{SCARD_E_INVALID_PARAMETER};
  });
  if (answer.result == SCARD_S_SUCCESS && answer.data && handle && protocol) {
    *protocol = static_cast<DWORD>(Number(*answer.data));
    *handle = static_cast<SCARDHANDLE>(answer.Reported(static_cast<int64_t>(session.NextHandle())));
    session.Connect(*handle, context, *protocol);
    call.Wrote(Hex(*handle));
    call.Wrote(*protocol);
  }
  return call.ReturnHex<LONG>(answer);
}

SIMULATOR_API LONG SCardReconnect(SCARDHANDLE handle, DWORD shareMode, DWORD protocols,
                                  DWORD initialization, DWORD* protocol) {
  Call call("SCardReconnect", {Hex(handle), shareMode, protocols, initialization});
  const Answer answer = call.Ask([&]() -> Answer {
    if (const LONG code = session.Check(handle); code != SCARD_S_SUCCESS) return {code};
    if (!(protocols & SCARD_PROTOCOL_T0)) return {SCARD_E_PROTO_MISMATCH};
    if (initialization != SCARD_LEAVE_CARD) Card().Reset();
    return {SCARD_S_SUCCESS, Octets{SCARD_PROTOCOL_T0}};
  });
  if (answer.data && protocol) {
    *protocol = static_cast<DWORD>(Number(*answer.data));
    call.Wrote(*protocol);
  }
  return call.ReturnHex<LONG>(answer);
}

SIMULATOR_API LONG SCardDisconnect(SCARDHANDLE handle, DWORD disposition) {
  Call call("SCardDisconnect", {Hex(handle), disposition});
  return call.ReturnHex<LONG>(call.Ask([&]() -> Answer {
    const bool cardIsThere = session.Check(handle) == SCARD_S_SUCCESS;
    if (!session.Disconnect(handle)) return {ERROR_INVALID_HANDLE};
    if (cardIsThere && disposition != SCARD_LEAVE_CARD) Card().Reset();
    return {SCARD_S_SUCCESS};
  }));
}

SIMULATOR_API LONG SCardBeginTransaction(SCARDHANDLE handle) {
  Call call("SCardBeginTransaction", {Hex(handle)});
  return call.ReturnHex<LONG>(call.Ask([&] { return Answer{session.Check(handle)}; }));
}

SIMULATOR_API LONG SCardEndTransaction(SCARDHANDLE handle, DWORD disposition) {
  Call call("SCardEndTransaction", {Hex(handle), disposition});
  return call.ReturnHex<LONG>(call.Ask([&]() -> Answer {
    const LONG code = session.Check(handle);
    if (code == SCARD_S_SUCCESS && disposition != SCARD_LEAVE_CARD) Card().Reset();
    return {code};
  }));
}

SIMULATOR_API LONG SCardTransmit(SCARDHANDLE handle, const SCARD_IO_REQUEST* header,
                                 const uint8_t* command, DWORD length, SCARD_IO_REQUEST*,
                                 uint8_t* reply, DWORD* replyLength) {
  Call call("SCardTransmit", {Hex(handle), header ? header->dwProtocol : 0, {command, length}});
  Answer answer = call.Ask([&]() -> Answer {
    if (!header || !reply || !replyLength) return {SCARD_E_INVALID_PARAMETER};
    const DWORD protocol = session.Protocol(handle);
    if (protocol != 0 && protocol != header->dwProtocol) return {SCARD_E_PROTO_MISMATCH};
    return AskCard(handle, command, length);
  });
  HandOver(call, answer, reply, replyLength);
  return call.ReturnHex<LONG>(answer);
}

SIMULATOR_API LONG SCardControl(SCARDHANDLE handle, DWORD control, const uint8_t* input,
                                DWORD length, uint8_t* output, DWORD outputSize,
                                DWORD* outputLength) {
  Call call("SCardControl", {Hex(handle), Hex(control), {input, length}});
  Answer answer = call.Ask([&]() -> Answer {
    if (!output || !outputLength) return {SCARD_E_INVALID_PARAMETER};
    if (control == kAtrCode) return AskAtr(handle);
    if (control == kExchangeCode) return AskCard(handle, input, length);
    return {SCARD_E_UNSUPPORTED_FEATURE};
  });
  if (outputLength) *outputLength = outputSize;
  HandOver(call, answer, output, outputLength);
  return call.ReturnHex<LONG>(answer);
}

SIMULATOR_API LONG SCardGetAttrib(SCARDHANDLE handle, DWORD attribute, uint8_t* value,
                                  DWORD* length) {
  Call call("SCardGetAttrib", {Hex(handle), Hex(attribute)});
  Answer answer = call.Ask([&]() -> Answer {
    if (!length) return {SCARD_E_INVALID_PARAMETER};
    return attribute == SCARD_ATTR_ATR_STRING ? AskAtr(handle)
                                              : Answer{SCARD_E_UNSUPPORTED_FEATURE};
  });
  HandOver(call, answer, value, length);
  return call.ReturnHex<LONG>(answer);
}

SIMULATOR_API LONG SCardGetStatusChangeA(SCARDCONTEXT context, DWORD timeout,
                                         SCARD_READERSTATEA* states, DWORD count) {
  Call call("SCardGetStatusChangeA", {Hex(context), timeout});
  const std::span<SCARD_READERSTATEA> asked(states, states ? count : 0);
  for (const SCARD_READERSTATEA& state : asked)
    call.With(state.szReader).With(Hex(state.dwCurrentState));
  const Answer answer = call.Ask([&] { return AskForNews(context, states, count); });
  if (call.Prepared() && !asked.empty()) {
    SCARD_READERSTATEA& first = asked.front();
    first.dwEventState = static_cast<DWORD>(answer.Reported(first.dwEventState));
    if (answer.data) {
      std::memcpy(first.rgbAtr, answer.data->data(),
                  std::min(answer.data->size(), sizeof first.rgbAtr));
      first.cbAtr = static_cast<DWORD>(answer.data->size());
    }
  }
  const auto code = static_cast<LONG>(answer.result);
  if (code == SCARD_S_SUCCESS || code == SCARD_E_TIMEOUT) {
    for (const SCARD_READERSTATEA& state : asked) call.Wrote(Hex(state.dwEventState));
  }
  return call.ReturnHex<LONG>(answer);
}

SIMULATOR_API LONG SCardStatusA(SCARDHANDLE handle, char* reader, DWORD* readerLength, DWORD* state,
                                DWORD* protocol, uint8_t* atr, DWORD* atrLength) {
  Call call("SCardStatusA", {Hex(handle)});
  Answer answer = call.Ask([&] { return AskAtr(handle); });
  if (answer.result == SCARD_S_SUCCESS) {
    const std::vector<const char*> readers = Readers();
    Answer name{SCARD_S_SUCCESS, MultiString({readers.data(), 1})};
    HandOver(call, name, reader, readerLength);
    if (state) *state = kSpecific;
    if (protocol) *protocol = session.Protocol(handle);
    if (name.result != SCARD_S_SUCCESS) answer = name;
  }
  HandOver(call, answer, atr, atrLength);
  return call.ReturnHex<LONG>(answer);
}

SIMULATOR_API LONG SCardLocateCardsA(SCARDCONTEXT context, const char* cards, SCARD_READERSTATEA*,
                                     DWORD) {
  Call call("SCardLocateCardsA", {Hex(context), cards});
  return call.ReturnHex<LONG>(call.Ask([] { return Answer{SCARD_E_UNSUPPORTED_FEATURE}; }));
}

SIMULATOR_API LONG SCardListCardsA(SCARDCONTEXT context, const uint8_t*, const void*, DWORD, char*,
                                   DWORD*) {
  Call call("SCardListCardsA", {Hex(context)});
  return call.ReturnHex<LONG>(call.Ask([] { return Answer{SCARD_E_UNSUPPORTED_FEATURE}; }));
}

SIMULATOR_API LONG SCardForgetCardTypeA(SCARDCONTEXT context, const char* card) {
  Call call("SCardForgetCardTypeA", {Hex(context), card});
  return call.ReturnHex<LONG>(call.Ask([] { return Answer{SCARD_E_UNSUPPORTED_FEATURE}; }));
}

}  // extern "C"
