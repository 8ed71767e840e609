/*
 * A simulated tyreader: one reader on port index 0 (COM1). The card answers in every slot.
 *
 * The journal shows status words in hexadecimal. SimulatorRestart forgets the handles, which count
 * from 0.
 *
 * What the data and length of a prepared answer mean:
 *   TY_Dreset      data: the ATR
 *   TY_Dtsi_api    data: the reply without its status word, which is the result
 */
#include "ty_answer.h"

using simulator::Answer;
using simulator::Call;

namespace {

constexpr int32_t kFailed = -1;
constexpr int32_t kPort = 0;

simulator::Handles handles(0);
const simulator::AtRestart forget([] { handles.Forget(); });

}  // namespace

extern "C" {

SIMULATOR_API int32_t TY_Open(int32_t baud, int32_t port) {
  Call call("TY_Open", {baud, port});
  return call.Return<int32_t>(
      call.Ask([&] { return Answer{port == kPort ? handles.Open(port) : kFailed}; }));
}

SIMULATOR_API int32_t TY_Close(int64_t handle) {
  Call call("TY_Close", {handle});
  return call.Return<int32_t>(
      call.Ask([&] { return Answer{handles.Close(handle) ? 0 : kFailed}; }));
}

SIMULATOR_API uint16_t TY_Dreset(int64_t handle, uint8_t slot, uint16_t* length, uint8_t* buffer) {
  Call call("TY_Dreset", {handle, slot});
  const Answer answer =
      call.Ask([&] { return handles.Knows(handle) ? ty::ToReset() : Answer{ty::kNoCard}; });
  HandOver(call, answer, buffer, length);
  return call.ReturnHex<uint16_t>(answer);
}

SIMULATOR_API uint16_t TY_Dtsi_api(int64_t handle, uint8_t slot, uint32_t length,
                                   const uint8_t* command, uint32_t* replyLength, uint8_t* reply) {
  Call call("TY_Dtsi_api", {handle, slot, {command, length}});
  const Answer answer = call.Ask(
      [&] { return handles.Knows(handle) ? ty::ToCommand(command, length) : Answer{ty::kNoCard}; });
  HandOver(call, answer, reply, replyLength);
  return call.ReturnHex<uint16_t>(answer);
}

SIMULATOR_API int32_t TY_DCardExist(void) { return simulator::NotSimulated("TY_DCardExist"); }

}  // extern "C"
