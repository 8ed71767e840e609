/*
 * A simulated S5009: one reader on port 1. The card answers in every slot and to both resets.
 *
 * Results are 0 for success. SimulatorRestart closes the port.
 *
 * What the data and length of a prepared answer mean:
 *   ExchangeAPDU         data: the reply, which is written as text; length: in characters
 *   Mifare_SearchCard,   data: the ATR
 *   Mifare_GetATS
 */
#include <utility>

#include "common/reader.h"

using simulator::Answer;
using simulator::Call;
using simulator::FromText;
using simulator::NotSimulated;
using simulator::Octets;
using simulator::ToHex;

namespace {

constexpr int32_t kFailed = -1;
constexpr int32_t kNoSuchPort = 1;
constexpr int32_t kPort = 1;
constexpr size_t kReplyCharacters = 256;

bool portOpen = false;
const simulator::AtRestart forget([] { portOpen = false; });

Answer With(std::optional<Octets> data) {
  return portOpen && data ? Answer{0, std::move(data)} : Answer{kFailed};
}

int32_t Reset(const char* function, uint8_t* buffer, uint32_t* length) {
  Call call(function, {});
  const Answer answer = call.Ask([] { return With(simulator::ResetCard()); });
  HandOver(call, answer, buffer, length);
  return call.Return<int32_t>(answer);
}

}  // namespace

extern "C" {

SIMULATOR_API int32_t InitCOM(int32_t port) {
  Call call("InitCOM", {port});
  return call.Return<int32_t>(call.Ask([&] {
    if (port == kPort) portOpen = true;
    return Answer{port == kPort ? 0 : kNoSuchPort};
  }));
}

SIMULATOR_API int16_t CloseCOM(int32_t port) {
  Call call("CloseCOM", {port});
  return call.Return<int16_t>(call.Ask([&] {
    const bool closed = port == kPort && std::exchange(portOpen, false);
    return Answer{closed ? 0 : kNoSuchPort};
  }));
}

SIMULATOR_API int32_t ExchangeAPDU(int32_t slot, const char* command, int32_t length, char* reply,
                                   uint32_t* replyLength) {
  const std::string text(command, command && length > 0 ? static_cast<size_t>(length) : 0);
  Call call("ExchangeAPDU", {slot, text.c_str(), length});
  Answer answer = call.Ask([&] {
    const Octets octets = simulator::FromHex(text);
    return With(simulator::AskCard(octets.data(), static_cast<int64_t>(octets.size()),
                                   kReplyCharacters / 2));
  });
  if (answer.data) answer.data = FromText(ToHex(*answer.data));
  HandOver(call, answer, reply, replyLength, kReplyCharacters);
  return call.Return<int32_t>(answer);
}

SIMULATOR_API int32_t Mifare_SearchCard(uint8_t* buffer, uint32_t* length) {
  return Reset("Mifare_SearchCard", buffer, length);
}

SIMULATOR_API int32_t Mifare_GetATS(uint8_t* buffer, uint32_t* length) {
  return Reset("Mifare_GetATS", buffer, length);
}

SIMULATOR_API int32_t CardPowerUP(void) { return NotSimulated("CardPowerUP"); }
SIMULATOR_API int32_t CardPowerDown(void) { return NotSimulated("CardPowerDown"); }
SIMULATOR_API int32_t Mifare_CardTypeSet(void) { return NotSimulated("Mifare_CardTypeSet"); }
SIMULATOR_API int32_t Mifare_SlectCardType(void) { return NotSimulated("Mifare_SlectCardType"); }
SIMULATOR_API int32_t Mifare_ReadBlock(void) { return NotSimulated("Mifare_ReadBlock"); }
SIMULATOR_API int32_t Mifare_WriteBlock(void) { return NotSimulated("Mifare_WriteBlock"); }
SIMULATOR_API int32_t Mifare_WriteAccess(void) { return NotSimulated("Mifare_WriteAccess"); }
SIMULATOR_API int32_t Mifare_Decrement(void) { return NotSimulated("Mifare_Decrement"); }
SIMULATOR_API int32_t Mifare_Increment(void) { return NotSimulated("Mifare_Increment"); }
SIMULATOR_API int32_t Mifare_BlockCopy(void) { return NotSimulated("Mifare_BlockCopy"); }

}  // extern "C"
