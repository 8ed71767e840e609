/*
 * A simulated dcrf32: D8 readers on the library's ports 0 (COM1) and 100 (USB). The card is in the
 * contactless field and in every contact slot at the same time.
 *
 * Results are 0 for success; dc_init gives a handle from 1 on. SimulatorRestart forgets the handles
 * and the state of the contactless selection.
 *
 * What the data and length of a prepared answer mean:
 *   dc_request, dc_anticoll,            data: the number, most significant octet first
 *   dc_select
 *   dc_pro_resethex, dc_cpureset_hex    data: the ATR, written as text; length: in octets
 *   dc_pro_commandlink, dc_cpuapdu      data: the reply
 */
#include <algorithm>
#include <cstring>

#include "common/reader.h"

using simulator::Answer;
using simulator::Call;
using simulator::Octets;

namespace {

constexpr int16_t kFailed = -1;
constexpr int16_t kPorts[] = {0, 100};
constexpr uint8_t kCardNumber[] = {0x4F, 0x52, 0x56, 0x4E};

// The progress of the card's selection in the field; each step needs the one before.
enum Selection { kNothing, kFieldReset, kRequested, kNumberRead, kSelected, kActive };

simulator::Handles handles(1);
Selection selection = kNothing;
const simulator::AtRestart forget([] {
  handles.Forget();
  selection = kNothing;
});

Answer With(std::optional<Octets> data) {
  return data ? Answer{0, std::move(data)} : Answer{kFailed};
}

// Makes one step of the selection and gives its data.
Answer Step(int64_t handle, Selection step, const Octets& data = {}) {
  const bool follows = step == kFieldReset || selection == step - 1;
  if (!handles.Knows(handle) || !simulator::CardPresent() || !follows) {
    selection = kNothing;
    return {kFailed};
  }
  selection = step;
  return {0, data};
}

void WriteNumber(Call& call, const Answer& answer, uint32_t* number) {
  if (!answer.data || !number) return;
  *number = 0;
  for (const uint8_t octet : *answer.data) *number = *number << 8 | octet;
  call.Wrote(*number);
}

// Writes the ATR as text without a terminator.
int16_t GiveText(Call& call, const Answer& answer, uint8_t* length, char* text) {
  const Octets octets = answer.data.value_or(Octets());
  const std::string digits = simulator::ToHex(octets);
  if (text) std::memcpy(text, digits.data(), std::min(digits.size(), simulator::kAreaSize));
  if (length) *length = static_cast<uint8_t>(answer.Reported(static_cast<int64_t>(octets.size())));
  if (answer.data) call.Wrote(digits.c_str());
  return call.Return<int16_t>(answer);
}

}  // namespace

extern "C" {

SIMULATOR_API int64_t dc_init(int16_t port, int32_t baud) {
  Call call("dc_init", {port, baud});
  return call.Return<int64_t>(call.Ask([&] {
    const bool there = std::find(std::begin(kPorts), std::end(kPorts), port) != std::end(kPorts);
    return Answer{there ? handles.Open(port) : kFailed};
  }));
}

SIMULATOR_API int16_t dc_exit(int64_t handle) {
  Call call("dc_exit", {handle});
  return call.Return<int16_t>(
      call.Ask([&] { return Answer{handles.Close(handle) ? 0 : kFailed}; }));
}

SIMULATOR_API int16_t dc_config_card(int64_t handle, uint8_t type) {
  Call call("dc_config_card", {handle, simulator::Hex(type)});
  return call.Return<int16_t>(
      call.Ask([&] { return Answer{handles.Knows(handle) ? 0 : kFailed}; }));
}

SIMULATOR_API int16_t dc_setcpu(int64_t handle, uint8_t slot) {
  Call call("dc_setcpu", {handle, slot});
  return call.Return<int16_t>(
      call.Ask([&] { return Answer{handles.Knows(handle) ? 0 : kFailed}; }));
}

SIMULATOR_API int16_t dc_reset(int64_t handle, uint16_t milliseconds) {
  Call call("dc_reset", {handle, milliseconds});
  return call.Return<int16_t>(call.Ask([&] { return Step(handle, kFieldReset); }));
}

SIMULATOR_API int16_t dc_request(int64_t handle, uint8_t mode, uint32_t* tagType) {
  Call call("dc_request", {handle, mode});
  const Answer answer = call.Ask([&] { return Step(handle, kRequested, {0x00, 0x04}); });
  WriteNumber(call, answer, tagType);
  return call.Return<int16_t>(answer);
}

SIMULATOR_API int16_t dc_anticoll(int64_t handle, uint8_t zero, uint32_t* cardNumber) {
  Call call("dc_anticoll", {handle, zero});
  const Answer answer = call.Ask([&] {
    return Step(handle, kNumberRead, {std::begin(kCardNumber), std::end(kCardNumber)});
  });
  WriteNumber(call, answer, cardNumber);
  return call.Return<int16_t>(answer);
}

SIMULATOR_API int16_t dc_select(int64_t handle, uint32_t cardNumber, uint32_t* size) {
  Call call("dc_select", {handle, cardNumber});
  const Answer answer = call.Ask([&] { return Step(handle, kSelected, {0x20}); });
  WriteNumber(call, answer, size);
  return call.Return<int16_t>(answer);
}

SIMULATOR_API int16_t dc_pro_resethex(int64_t handle, uint8_t* length, char* text) {
  Call call("dc_pro_resethex", {handle});
  const Answer answer = call.Ask([&] {
    const Answer step = Step(handle, kActive);
    return step.result == 0 ? With(simulator::ResetCard()) : step;
  });
  return GiveText(call, answer, length, text);
}

SIMULATOR_API int16_t dc_cpureset_hex(int64_t handle, uint8_t* length, char* text) {
  Call call("dc_cpureset_hex", {handle});
  const Answer answer =
      call.Ask([&] { return handles.Knows(handle) ? With(simulator::ResetCard()) : With({}); });
  return GiveText(call, answer, length, text);
}

SIMULATOR_API int16_t dc_pro_commandlink(int64_t handle, uint8_t length, const uint8_t* command,
                                         uint32_t* replyLength, uint8_t* reply, uint8_t ten,
                                         uint8_t fiftySix) {
  Call call("dc_pro_commandlink", {handle, {command, length}, ten, fiftySix});
  const Answer answer = call.Ask([&] {
    const bool active = handles.Knows(handle) && selection == kActive;
    return active ? With(simulator::AskCard(command, length)) : With({});
  });
  HandOver(call, answer, reply, replyLength);
  return call.Return<int16_t>(answer);
}

SIMULATOR_API int16_t dc_cpuapdu(int64_t handle, uint8_t length, const uint8_t* command,
                                 uint32_t* replyLength, uint8_t* reply) {
  Call call("dc_cpuapdu", {handle, {command, length}});
  const Answer answer = call.Ask(
      [&] { return handles.Knows(handle) ? With(simulator::AskCard(command, length)) : With({}); });
  HandOver(call, answer, reply, replyLength);
  return call.Return<int16_t>(answer);
}

}  // extern "C"
