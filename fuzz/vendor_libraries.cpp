#include "fuzz/vendor_libraries.h"

#include <map>
#include <memory>
#include <set>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include "platform/module.h"
#include "platform/socket.h"
#include "readers/bsit_reader_tool.h"
#include "readers/d8_reader_tool.h"
#include "readers/icr_tool.h"
#include "readers/pcsc_interface.h"
#include "readers/s5009_reader_tool.h"
#include "readers/ty_com_reader_tool.h"
#include "readers/ty_usb_reader_tool.h"
#include "readers/wd_reader_tool.h"
#include "util/hex.h"

namespace orvane_fuzz {
namespace {

using namespace orvane;  // this file is the other side of its drivers

constexpr std::size_t kArea = 256;

struct World {
  Input* input = nullptr;
  std::set<std::string, std::less<>> hidden;
  std::map<std::string, int, std::less<>> loaded;  // how often each library is loaded
  std::map<const void*, std::unique_ptr<char[]>> lists;
  std::set<std::int32_t> sockets;
  std::vector<std::string> sent;
  std::string thrower;
};
World world;

Answer NextAnswer() {
  Input ahead = *world.input;
  const char manner = static_cast<char>(ahead.Byte());
  if (!Answer::Begins(manner)) return {};
  const Answer answer = Answer::Read(manner, ahead.Line());
  *world.input = ahead;
  return answer;
}

template <typename Table>
Answer CallInto() {
  Expect(world.loaded[Table::kFileName] > 0, "a call into a library that is not loaded");
  const Answer answer = NextAnswer();
  if (answer.manner == '!') {
    world.thrower = Table::kFileName;
    throw std::runtime_error("a vendor's exception");
  }
  return answer;
}

std::string OctetsOf(std::string_view digits) {
  std::string octets((digits.size() + 1) / 2, '\0');
  DecodeHex(digits, reinterpret_cast<std::uint8_t*>(octets.data()));
  return octets;
}

std::string Characters(const Answer& answer) { return answer.data.value_or("9000"); }
std::string Octets(const Answer& answer) { return OctetsOf(Characters(answer)); }

void Send(const std::uint8_t* command, std::size_t length) {
  world.sent.emplace_back(reinterpret_cast<const char*>(command), length);
}

// A function whose parameters say by their types what they are for: an area that is written to gets
// the data, another number that is written to gets its length, and octets that are read are a
// command whose length stands before them.
template <auto entry, std::int64_t usual, std::size_t room>
struct Played;
template <typename Table, typename Result, typename... Parameters,
          Result (*Table::*entry)(Parameters...), std::int64_t usual, std::size_t room>
struct Played<entry, usual, room> {
  static Result Call(Parameters... parameters) {
    [[maybe_unused]] std::size_t before = 0;
    (Read(parameters, before), ...);
    const Answer answer = CallInto<Table>();
    (Give(answer, parameters), ...);
    return static_cast<Result>(answer.result.value_or(usual));
  }

 private:
  template <typename Parameter>
  static void Read(Parameter parameter, std::size_t& before) {
    if constexpr (std::is_integral_v<Parameter>) before = static_cast<std::size_t>(parameter);
    if constexpr (std::is_same_v<Parameter, const std::uint8_t*>) Send(parameter, before);
  }
  template <typename Parameter>
  static void Give(const Answer& answer, Parameter parameter) {
    using Target = std::remove_pointer_t<Parameter>;
    if constexpr (std::is_same_v<Parameter, std::uint8_t*>) {
      answer.Write(Octets(answer), parameter, room);
    } else if constexpr (std::is_pointer_v<Parameter> && !std::is_const_v<Target>) {
      answer.Report(parameter, Octets(answer).size());
    }
  }
};

// The functions that these rules do not fit.

std::int16_t ResetToText(std::int64_t, std::uint8_t* length, char* text) {
  const Answer answer = CallInto<D8EntryPoints>();
  answer.Write(Characters(answer), text, kArea);
  answer.Report(length, Characters(answer).size() / 2);
  return static_cast<std::int16_t>(answer.result.value_or(0));
}

std::int32_t ExchangeText(std::int32_t, const char* command, std::int32_t length, char* reply,
                          std::uint32_t* replyLength) {
  world.sent.push_back(OctetsOf({command, static_cast<std::size_t>(length)}));
  const Answer answer = CallInto<S5009EntryPoints>();
  answer.Write(Characters(answer), reply, kArea);
  answer.Report(replyLength, Characters(answer).size());
  return static_cast<std::int32_t>(answer.result.value_or(0));
}

LONG Transmit(SCARDHANDLE, const SCARD_IO_REQUEST* header, const std::uint8_t* command,
              DWORD length, SCARD_IO_REQUEST*, std::uint8_t* reply, DWORD* replyLength) {
  Expect(header->dwProtocol != 0, "a protocol header");
  Send(command, length);
  const Answer answer = CallInto<PcscEntryPoints>();
  answer.Write(Octets(answer), reply, *replyLength);
  answer.Report(replyLength, Octets(answer).size());
  return static_cast<LONG>(answer.result.value_or(SCARD_S_SUCCESS));
}

LONG Control(SCARDHANDLE, DWORD, const void* in, DWORD inLength, void* out, DWORD outRoom,
             DWORD* outLength) {
  if (in != nullptr) Send(static_cast<const std::uint8_t*>(in), inLength);
  const Answer answer = CallInto<PcscEntryPoints>();
  answer.Write(Octets(answer), static_cast<std::uint8_t*>(out), outRoom);
  answer.Report(outLength, Octets(answer).size());
  return static_cast<LONG>(answer.result.value_or(SCARD_S_SUCCESS));
}

// The names stand in the data with | behind each. A library may report less of its list than there
// is; nobody could tell that it reports more.
LONG ListReaders(SCARDCONTEXT, const char*, char** readers, DWORD* length) {
  const Answer answer = CallInto<PcscEntryPoints>();
  std::string names = answer.data.value_or("Simulated Reader 0||");
  std::replace(names.begin(), names.end(), '|', '\0');
  if (answer.length) names.resize(std::min(names.size(), static_cast<std::size_t>(*answer.length)));
  auto list = std::make_unique<char[]>(names.size());
  names.copy(list.get(), names.size());
  *readers = list.get();
  *length = static_cast<DWORD>(names.size());
  const auto result = static_cast<LONG>(answer.result.value_or(SCARD_S_SUCCESS));
  if (result == SCARD_S_SUCCESS) world.lists[*readers] = std::move(list);
  return result;
}

LONG FreeMemory(SCARDCONTEXT, const void* memory) {
  Expect(world.lists.erase(memory) == 1, "a list that is given back");
  return static_cast<LONG>(CallInto<PcscEntryPoints>().result.value_or(SCARD_S_SUCCESS));
}

LONG GetStatusChange(SCARDCONTEXT, DWORD, SCARD_READERSTATEA* states, DWORD count) {
  Expect(count == 1 && states->szReader != nullptr, "a reader that is asked after");
  const Answer answer = CallInto<PcscEntryPoints>();
  states->dwEventState = static_cast<DWORD>(answer.length.value_or(SCARD_STATE_PRESENT));
  return static_cast<LONG>(answer.result.value_or(SCARD_S_SUCCESS));
}

SCARD_IO_REQUEST protocolT0{SCARD_PROTOCOL_T0, sizeof(SCARD_IO_REQUEST)};
SCARD_IO_REQUEST protocolT1{SCARD_PROTOCOL_T1, sizeof(SCARD_IO_REQUEST)};

template <auto entry, std::int64_t usual, std::size_t room = kArea>
void* Play() {
  return reinterpret_cast<void*>(&Played<entry, usual, room>::Call);
}

#define PLAY(Table, name, ...) \
  { #name, Play < &Table::name, __VA_ARGS__>() }
#define OWN(name, function) \
  { #name, reinterpret_cast < void*>(&(function)) }

const std::map<std::string_view, void*> kFunctions = {
    PLAY(TyUsbEntryPoints, TYKey_Change, 0),
    PLAY(TyUsbEntryPoints, TYKey_Status, 0, 16),
    PLAY(TyUsbEntryPoints, TYKey_OpenTYKey, 0x9000),
    PLAY(TyUsbEntryPoints, TYKey_CloseTYKey, 0x9000),
    PLAY(TyUsbEntryPoints, TYKey_ColdReset, 0x9000),
    PLAY(TyUsbEntryPoints, TYKey_SendCommand, 0x9000),
    PLAY(TyComEntryPoints, TY_Open, 1),
    PLAY(TyComEntryPoints, TY_Close, 0),
    PLAY(TyComEntryPoints, TY_Dreset, 0x9000),
    PLAY(TyComEntryPoints, TY_Dtsi_api, 0x9000),
    PLAY(PcscEntryPoints, SCardEstablishContext, 0),
    PLAY(PcscEntryPoints, SCardReleaseContext, 0),
    OWN(SCardListReadersA, ListReaders),
    OWN(SCardFreeMemory, FreeMemory),
    PLAY(PcscEntryPoints, SCardConnectA, 0),
    PLAY(PcscEntryPoints, SCardDisconnect, 0),
    OWN(SCardTransmit, Transmit),
    PLAY(PcscEntryPoints, SCardGetAttrib, 0),
    OWN(SCardControl, Control),
    OWN(SCardGetStatusChangeA, GetStatusChange),
    OWN(g_rgSCardT0Pci, protocolT0),
    OWN(g_rgSCardT1Pci, protocolT1),
    PLAY(WdEntryPoints, CT_open, 1),
    PLAY(WdEntryPoints, CT_close, 0),
    PLAY(WdEntryPoints, ICC_tsi_api, 0x9000),
    PLAY(WdEntryPoints, ICC_set_NAD, 0),
    PLAY(D8EntryPoints, dc_init, 1),
    PLAY(D8EntryPoints, dc_exit, 0),
    PLAY(D8EntryPoints, dc_config_card, 0),
    PLAY(D8EntryPoints, dc_setcpu, 0),
    PLAY(D8EntryPoints, dc_reset, 0),
    PLAY(D8EntryPoints, dc_request, 0),
    PLAY(D8EntryPoints, dc_anticoll, 0),
    PLAY(D8EntryPoints, dc_select, 0),
    OWN(dc_pro_resethex, ResetToText),
    OWN(dc_cpureset_hex, ResetToText),
    PLAY(D8EntryPoints, dc_pro_commandlink, 0),
    PLAY(D8EntryPoints, dc_cpuapdu, 0),
    PLAY(S5009EntryPoints, InitCOM, 0),
    PLAY(S5009EntryPoints, CloseCOM, 0),
    OWN(ExchangeAPDU, ExchangeText),
    PLAY(S5009EntryPoints, Mifare_SearchCard, 0),
    PLAY(S5009EntryPoints, Mifare_GetATS, 0),
    PLAY(IcrEntryPoints, SDT_OpenPort, 0x90),
    PLAY(IcrEntryPoints, SDT_ClosePort, 0x90),
    PLAY(IcrEntryPoints, SDT_StartFindIDCard, 0x9F),
    PLAY(IcrEntryPoints, SDT_SelectIDCard, 0x90),
    PLAY(IcrEntryPoints, SDT_ReadBaseMsg, 0x90, 40960),
    PLAY(BsitEntryPoints, bsit_gethidlist, 2),
    PLAY(BsitEntryPoints, bsit_openHID, 0),
    PLAY(BsitEntryPoints, bsit_CloseHID, 0),
    PLAY(BsitEntryPoints, bsit_SetSlot, 0),
    PLAY(BsitEntryPoints, bsit_ResetCard, 0),
    PLAY(BsitEntryPoints, bsit_SendApdu, 0),
};

#undef PLAY
#undef OWN

// What the system says of a socket that is there; the calls fail for any other.
bool SocketDoes(std::int32_t socket) {
  return world.sockets.count(socket) > 0 && NextAnswer().result.value_or(1) != 0;
}

}  // namespace

void AnswerFrom(Input& input) {
  world.input = &input;
  world.hidden.clear();
  world.sockets.clear();
}

void Hide(std::string name) { world.hidden.insert(std::move(name)); }

std::vector<std::string> TakeSentCommands() { return std::exchange(world.sent, {}); }

std::string TakeThrower() { return std::exchange(world.thrower, {}); }

void ExpectAllReleased() {
  for (const auto& [library, times] : world.loaded) Expect(times == 0, library.c_str());
  Expect(world.lists.empty(), "a list of readers was not given back");
}

}  // namespace orvane_fuzz

namespace orvane::platform {

using namespace orvane_fuzz;  // the world takes the platform's place

// A module's handle is its count.
Module LoadModule(const char* fileName) {
  if (world.hidden.count(fileName) > 0) return {};
  int& times = world.loaded[fileName];
  ++times;
  return Module(&times);
}
Module LoadModuleFromOwnFolder(const char* fileName) { return LoadModule(fileName); }

Module::Module(Module&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
Module& Module::operator=(Module&& other) noexcept {
  std::swap(handle_, other.handle_);
  return *this;
}
Module::~Module() {
  if (handle_ != nullptr) --*static_cast<int*>(handle_);
}
void* Module::Find(const char* name) const {
  const auto found = kFunctions.find(name);
  return found == kFunctions.end() || world.hidden.count(name) > 0 ? nullptr : found->second;
}

bool StartSockets() { return NextAnswer().result.value_or(1) != 0; }
std::int32_t MakeTcpSocket() {
  if (NextAnswer().result.value_or(1) == -1) return -1;
  std::int32_t socket = 3;
  while (!world.sockets.insert(socket).second) ++socket;
  return socket;
}
void CloseSocket(std::int32_t socket) {
  Expect(world.sockets.erase(socket) == 1, "a socket that is closed");
}
bool SetSendTimeout(std::int32_t socket, std::int32_t) { return SocketDoes(socket); }
bool SetReceiveTimeout(std::int32_t socket, std::int32_t) { return SocketDoes(socket); }
bool SetBlocking(std::int32_t socket, bool) { return SocketDoes(socket); }
std::optional<std::uint32_t> Ipv4Address(const char* text) {
  if (*text == '\0') return std::nullopt;
  return 0x0100007F;
}
void BeginConnect(std::int32_t, std::uint32_t, std::uint16_t) {}
bool WaitConnected(std::int32_t socket, std::int32_t) { return SocketDoes(socket); }
bool WaitWritable(std::int32_t socket, std::int32_t) { return SocketDoes(socket); }
bool WaitReadable(std::int32_t socket, std::int32_t) { return SocketDoes(socket); }
std::int32_t Send(std::int32_t socket, const std::uint8_t* octets, std::int32_t count) {
  if (world.sockets.count(socket) == 0) return -1;
  orvane_fuzz::Send(octets, static_cast<std::size_t>(count));
  const std::int64_t sent = NextAnswer().result.value_or(count);
  return sent < 0 ? -1 : static_cast<std::int32_t>(std::min<std::int64_t>(sent, count));
}
std::int32_t Receive(std::int32_t socket, std::uint8_t* octets, std::int32_t room) {
  const Answer answer = NextAnswer();
  if (world.sockets.count(socket) == 0 || answer.result.value_or(0) < 0) return -1;
  const std::string reply = Octets(answer);
  answer.Write(reply, octets, static_cast<std::size_t>(room));
  if (answer.manner == '~') return room;
  return static_cast<std::int32_t>(std::min(reply.size(), static_cast<std::size_t>(room)));
}

}  // namespace orvane::platform
