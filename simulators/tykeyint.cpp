/*
 * A simulated tykeyint: two keys. The first one has the virtual card, the second one has no card.
 *
 * A key has one index, from 0 on, in TYKey_Status's table and in TYKey_OpenTYKey. Orvane passes one
 * less than the number that it opens, so it lists the first key as USB0 and opens it as USB1.
 *
 * The journal shows status words in hexadecimal. SimulatorRestart forgets the handles. A handle is
 * a negative number of 32 bits, sign-extended: a caller that extends it otherwise gets errors.
 *
 * What the data and length of a prepared answer mean:
 *   TYKey_Status         data: the table
 *   TYKey_OpenTYKey      length: the handle
 *   TYKey_ColdReset      data: the ATR
 *   TYKey_SendCommand    data: the reply without its status word, which is the result
 */
#include "ty_answer.h"

using simulator::Answer;
using simulator::Call;
using simulator::NotSimulated;

namespace {

constexpr uint16_t kNoKey = 0x6FFE;
constexpr int32_t kKeys = 2;
constexpr int32_t kKeyWithCard = 0;
constexpr size_t kTableSize = 16;

simulator::Handles handles(-1000);
const simulator::AtRestart forget([] { handles.Forget(); });

}  // namespace

extern "C" {

SIMULATOR_API int32_t TYKey_Change(void) {
  Call call("TYKey_Change", {});
  return call.Return<int32_t>(call.Ask([] { return Answer{0}; }));
}

SIMULATOR_API int32_t TYKey_Status(uint8_t* table) {
  Call call("TYKey_Status", {});
  const Answer answer = call.Ask([] {
    simulator::Octets keys(kTableSize);
    for (size_t key = 0; key < kKeys; ++key) keys[key] = 1;
    return Answer{0, keys};
  });
  call.Write(answer, table, kTableSize);
  return call.Return<int32_t>(answer);
}

SIMULATOR_API uint16_t TYKey_OpenTYKey(int32_t index, int64_t* handle) {
  Call call("TYKey_OpenTYKey", {index});
  const Answer answer = call.Ask([&] {
    const bool there = index >= 0 && index < kKeys;
    return there ? Answer{ty::kDone, std::nullopt, handles.Open(index)} : Answer{kNoKey};
  });
  if (handle && answer.length != SIMULATOR_TRUE_LENGTH) {
    *handle = answer.length;
    call.Wrote(*handle);
  }
  return call.ReturnHex<uint16_t>(answer);
}

SIMULATOR_API uint16_t TYKey_CloseTYKey(int64_t handle) {
  Call call("TYKey_CloseTYKey", {handle});
  return call.ReturnHex<uint16_t>(
      call.Ask([&] { return Answer{handles.Close(handle) ? ty::kDone : kNoKey}; }));
}

SIMULATOR_API uint16_t TYKey_ColdReset(int64_t handle, uint32_t* length, uint8_t* buffer) {
  Call call("TYKey_ColdReset", {handle});
  const Answer answer = call.Ask(
      [&] { return handles.Reader(handle) == kKeyWithCard ? ty::ToReset() : Answer{ty::kNoCard}; });
  HandOver(call, answer, buffer, length);
  return call.ReturnHex<uint16_t>(answer);
}

SIMULATOR_API uint16_t TYKey_SendCommand(int64_t handle, uint32_t length, const uint8_t* command,
                                         uint32_t* replyLength, uint8_t* reply) {
  Call call("TYKey_SendCommand", {handle, {command, length}});
  const Answer answer = call.Ask([&] {
    return handles.Reader(handle) == kKeyWithCard ? ty::ToCommand(command, length)
                                                  : Answer{ty::kNoCard};
  });
  HandOver(call, answer, reply, replyLength);
  return call.ReturnHex<uint16_t>(answer);
}

SIMULATOR_API int32_t TYKey_GetATR(void) { return NotSimulated("TYKey_GetATR"); }
SIMULATOR_API int32_t TYKey_CardExist(void) { return NotSimulated("TYKey_CardExist"); }
SIMULATOR_API int32_t TYKey_KeyExist(void) { return NotSimulated("TYKey_KeyExist"); }
SIMULATOR_API int32_t TYKey_BeginTransEx(void) { return NotSimulated("TYKey_BeginTransEx"); }
SIMULATOR_API int32_t TYKey_EndTransEx(void) { return NotSimulated("TYKey_EndTransEx"); }

}  // extern "C"
