/*
 * A simulated sdtapi: identity-card readers on the ports 1 (COM1) and 1001 (USB), with one identity
 * card in front of both. A card must be found before it is selected, and selected before its
 * messages are read.
 *
 * The journal shows results in hexadecimal: 0x90 is success, 0x9F a card that was found.
 * SimulatorRestart closes the ports.
 *
 * What the data and length of a prepared answer mean:
 *   SDT_StartFindIDCard,   data: the buffer's content
 *   SDT_SelectIDCard
 *   SDT_ReadBaseMsg        data: the first message, up to 40,960 octets; length: of that message.
 *                          The second message is empty then
 */
#include <algorithm>
#include <set>

#include "common/reader.h"

using simulator::Answer;
using simulator::Call;
using simulator::Octets;

namespace {

constexpr int32_t kDone = 0x90;
constexpr int32_t kFound = 0x9F;
constexpr int32_t kPortFailed = 0x01;
constexpr int32_t kNotFound = 0x80;
constexpr int32_t kNotSelected = 0x81;
constexpr int32_t kNotRead = 0x41;
constexpr int32_t kPorts[] = {1, 1001};
constexpr size_t kMessageRoom = 40960;
constexpr size_t kTextSize = 256;
constexpr size_t kPhotoSize = 1024;

enum Selection { kNothing, kCardFound, kCardSelected };

std::set<int32_t> openPorts;
Selection selection = kNothing;
const simulator::AtRestart forget([] {
  openPorts.clear();
  selection = kNothing;
});

// One step on the way to the messages. An impossible step starts again from the beginning.
bool Step(int32_t port, Selection needed, Selection reached) {
  const bool possible = openPorts.contains(port) && simulator::CardPresent() && selection >= needed;
  selection = possible ? reached : kNothing;
  return possible;
}

// Name and birthday as such cards store them: UTF-16, filled up with blanks.
Octets TextMessage() {
  Octets text(kTextSize);
  const std::string_view content = "SAMPLE ORVANE        20000101";
  for (size_t i = 0; i < text.size(); i += 2) {
    text[i] = i / 2 < content.size() ? static_cast<uint8_t>(content[i / 2]) : ' ';
  }
  return text;
}

}  // namespace

extern "C" {

SIMULATOR_API int32_t SDT_OpenPort(int32_t port) {
  Call call("SDT_OpenPort", {port});
  return call.ReturnHex<int32_t>(call.Ask([&]() -> Answer {
    if (std::find(std::begin(kPorts), std::end(kPorts), port) == std::end(kPorts)) {
      return {kPortFailed};
    }
    openPorts.insert(port);
    return {kDone};
  }));
}

SIMULATOR_API int32_t SDT_ClosePort(int32_t port) {
  Call call("SDT_ClosePort", {port});
  return call.ReturnHex<int32_t>(
      call.Ask([&] { return Answer{openPorts.erase(port) != 0 ? kDone : kPortFailed}; }));
}

SIMULATOR_API int32_t SDT_StartFindIDCard(int32_t port, uint8_t* buffer, int32_t ifOpen) {
  Call call("SDT_StartFindIDCard", {port, ifOpen});
  const Answer answer = call.Ask([&] {
    return Step(port, kNothing, kCardFound) ? Answer{kFound, Octets(4)} : Answer{kNotFound};
  });
  call.Write(answer, buffer, simulator::kAreaSize);
  return call.ReturnHex<int32_t>(answer);
}

SIMULATOR_API int32_t SDT_SelectIDCard(int32_t port, uint8_t* buffer, int32_t ifOpen) {
  Call call("SDT_SelectIDCard", {port, ifOpen});
  const Answer answer = call.Ask([&] {
    return Step(port, kCardFound, kCardSelected) ? Answer{kDone, Octets(8)} : Answer{kNotSelected};
  });
  call.Write(answer, buffer, simulator::kAreaSize);
  return call.ReturnHex<int32_t>(answer);
}

SIMULATOR_API int32_t SDT_ReadBaseMsg(int32_t port, uint8_t* first, uint32_t* firstLength,
                                      uint8_t* second, uint32_t* secondLength, int32_t ifOpen) {
  Call call("SDT_ReadBaseMsg", {port, ifOpen});
  const Answer answer = call.Ask([&] {
    return Step(port, kCardSelected, kCardSelected) ? Answer{kDone, TextMessage()}
                                                    : Answer{kNotRead};
  });
  const bool readsCard = answer.data && !call.Prepared();
  HandOver(call, answer, first, firstLength, kMessageRoom);
  HandOver(call, {0, Octets(readsCard ? kPhotoSize : 0)}, second, secondLength, kMessageRoom);
  return call.ReturnHex<int32_t>(answer);
}

}  // extern "C"
