/*
 * A simulated wdcrwx: one reader, "USB1". It must be in Orvane's folder: Orvane looks for this
 * module there alone.
 *
 * A reply ends in the status word, which is the result too. The reader itself handles the command
 * 00 12 00 00 00: it resets the card, and the reply is the ATR alone. The result 6FF0 means that
 * nothing was exchanged.
 *
 * The journal shows status words in hexadecimal. SimulatorRestart forgets the handles, which count
 * from 1.
 *
 * What the data and length of a prepared answer mean:
 *   ICC_tsi_api    data: the reply
 */
#include <cstring>

#include "common/reader.h"

using simulator::Answer;
using simulator::Call;
using simulator::Octets;

namespace {

constexpr int32_t kFailed = -1;
constexpr uint16_t kDone = 0x9000;
constexpr uint16_t kNoExchange = 0x6FF0;
constexpr char kReader[] = "USB1";

simulator::Handles handles(1);
const simulator::AtRestart forget([] { handles.Forget(); });

Answer Exchange(const uint8_t* command, uint8_t length) {
  const Octets reset = {0x00, 0x12, 0x00, 0x00, 0x00};
  const bool isReset = command && Octets(command, command + length) == reset;
  std::optional<Octets> reply =
      isReset ? simulator::ResetCard() : simulator::AskCard(command, length);
  if (!reply) return {kNoExchange};
  const uint16_t word = isReset ? kDone : simulator::StatusWord(*reply);
  return {word, std::move(reply)};
}

}  // namespace

extern "C" {

SIMULATOR_API int32_t CT_open(const char* name, int32_t zero1, int32_t zero2) {
  Call call("CT_open", {name, zero1, zero2});
  return call.Return<int32_t>(call.Ask([&] {
    const bool there = name && std::strcmp(name, kReader) == 0;
    return Answer{there ? handles.Open(1) : kFailed};
  }));
}

SIMULATOR_API int32_t CT_close(int64_t handle) {
  Call call("CT_close", {handle});
  return call.Return<int32_t>(
      call.Ask([&] { return Answer{handles.Close(handle) ? 0 : kFailed}; }));
}

SIMULATOR_API uint16_t ICC_tsi_api(int64_t handle, uint8_t length, const uint8_t* command,
                                   uint32_t* replyLength, uint8_t* reply) {
  Call call("ICC_tsi_api", {handle, {command, length}});
  const Answer answer = call.Ask(
      [&] { return handles.Knows(handle) ? Exchange(command, length) : Answer{kNoExchange}; });
  HandOver(call, answer, reply, replyLength);
  return call.ReturnHex<uint16_t>(answer);
}

SIMULATOR_API int32_t ICC_set_NAD(int64_t handle, uint32_t address) {
  Call call("ICC_set_NAD", {handle, address});
  return call.Return<int32_t>(
      call.Ask([&] { return Answer{handles.Knows(handle) ? 0 : kFailed}; }));
}

SIMULATOR_API int32_t ICC_reset(void) { return simulator::NotSimulated("ICC_reset"); }

}  // extern "C"
