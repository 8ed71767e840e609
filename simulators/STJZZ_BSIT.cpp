/*
 * A simulated STJZZ_BSIT: two HID readers. The reader with index 0 has the virtual card in its slot
 * 0; the other reader has no card. Slot 0 is the only one.
 *
 * Results are 0 for success. SimulatorRestart forgets the handles, which count from 0.
 *
 * What the data and length of a prepared answer mean:
 *   bsit_ResetCard    data: the ATR
 *   bsit_SendApdu     data: the reply
 */
#include "common/reader.h"

using simulator::Answer;
using simulator::Call;
using simulator::Octets;

namespace {

constexpr int32_t kFailed = -1;
constexpr int32_t kReaders = 2;
constexpr int32_t kReaderWithCard = 0;

simulator::Handles handles(0);
const simulator::AtRestart forget([] { handles.Forget(); });

Answer With(std::optional<Octets> data) {
  return data ? Answer{0, std::move(data)} : Answer{kFailed};
}

}  // namespace

extern "C" {

SIMULATOR_API int32_t bsit_gethidlist(void) {
  Call call("bsit_gethidlist", {});
  return call.Return<int32_t>(call.Ask([] { return Answer{kReaders}; }));
}

SIMULATOR_API int32_t bsit_openHID(int32_t zero1, uint16_t index, int32_t zero2) {
  Call call("bsit_openHID", {zero1, index, zero2});
  return call.Return<int32_t>(
      call.Ask([&] { return Answer{index < kReaders ? handles.Open(index) : kFailed}; }));
}

SIMULATOR_API int32_t bsit_CloseHID(int64_t handle) {
  Call call("bsit_CloseHID", {handle});
  return call.Return<int32_t>(
      call.Ask([&] { return Answer{handles.Close(handle) ? 0 : kFailed}; }));
}

SIMULATOR_API int32_t bsit_SetSlot(int64_t handle, uint32_t slot) {
  Call call("bsit_SetSlot", {handle, slot});
  return call.Return<int32_t>(
      call.Ask([&] { return Answer{handles.Knows(handle) && slot == 0 ? 0 : kFailed}; }));
}

SIMULATOR_API int32_t bsit_ResetCard(int64_t handle, uint8_t* atr, uint32_t* length) {
  Call call("bsit_ResetCard", {handle});
  const Answer answer = call.Ask([&] {
    return handles.Reader(handle) == kReaderWithCard ? With(simulator::ResetCard()) : With({});
  });
  HandOver(call, answer, atr, length);
  return call.Return<int32_t>(answer);
}

SIMULATOR_API int32_t bsit_SendApdu(int64_t handle, uint32_t length, const uint8_t* command,
                                    uint32_t* replyLength, uint8_t* reply) {
  Call call("bsit_SendApdu", {handle, {command, length}});
  const Answer answer = call.Ask([&] {
    return handles.Reader(handle) == kReaderWithCard ? With(simulator::AskCard(command, length))
                                                     : With({});
  });
  HandOver(call, answer, reply, replyLength);
  return call.Return<int32_t>(answer);
}

SIMULATOR_API int32_t bsit_GetCardState(void) {
  return simulator::NotSimulated("bsit_GetCardState");
}
SIMULATOR_API int32_t bsit_CloseCard(void) { return simulator::NotSimulated("bsit_CloseCard"); }

}  // extern "C"
