// The virtual card under any sequence of commands. A line of the input is a command APDU as
// hexadecimal text; one that begins with R resets the card.
#include "common/virtual_card.h"

#include <algorithm>
#include <utility>

#include "fuzz/input.h"

namespace {

using namespace orvane_fuzz;
using simulator::Octets;
using simulator::VirtualCard;

constexpr std::uint8_t kUpdateBinary = 0xD6;

std::uint16_t StatusWord(const Octets& response) {
  return static_cast<std::uint16_t>(response[response.size() - 2] << 8 | response.back());
}

bool IsDefined(std::uint16_t word) {
  static constexpr std::uint16_t kWords[] = {
      0x9000, 0x6300, 0x63C0, 0x63C1, 0x63C2, 0x63C3, 0x6700, 0x6981, 0x6982, 0x6983, 0x6985,
      0x6986, 0x6987, 0x6988, 0x6A80, 0x6A82, 0x6A83, 0x6A84, 0x6A86, 0x6B00, 0x6D00, 0x6E00};
  return word >> 8 == 0x61 || word >> 8 == 0x6C ||
         std::find(std::begin(kWords), std::end(kWords), word) != std::end(kWords);
}

Octets Send(VirtualCard& card, const Octets& command) {
  Octets response = card.Transmit(command);
  Expect(response.size() >= 2 && response.size() <= 258, "a response's length");
  const std::uint16_t word = StatusWord(response);
  Expect(IsDefined(word), "a status word");
  Expect(word == 0x9000 || word >> 8 == 0x61 || response.size() == 2, "data without success");
  return response;
}

// All that waits, asked for in pieces of a length; 00 asks for the rest.
Octets Collect(VirtualCard card, std::uint8_t piece) {
  Octets all;
  for (Octets answer = {0x61, 0x00}; StatusWord(answer) != 0x9000;) {
    const bool exact = StatusWord(answer) >> 8 == 0x6C;
    answer = Send(card, {0x00, 0xC0, 0x00, 0x00, exact ? answer.back() : piece});
    all.insert(all.end(), answer.begin(), answer.end() - 2);
  }
  return all;
}

// What stands in the files that can be written.
Octets Contents(VirtualCard card) {
  Octets contents;
  Send(card, simulator::FromHex("00A4040C08F04F5256414E4501"));
  for (const char* read : {"00B0850000", "00B0860000"}) {
    const Octets content = Send(card, simulator::FromHex(read));
    contents.insert(contents.end(), content.begin(), content.end());
  }
  return contents;
}

void ExpectRead(VirtualCard card, const Octets& update) {
  const auto size = static_cast<std::uint8_t>(update[4] - (update[0] == 0x04 ? 4 : 0));
  const Octets read = Send(card, {0x00, 0xB0, update[2], update[3], size});
  Expect(read.size() == size + 2u && std::equal(read.begin(), read.end() - 2, update.begin() + 5),
         "what was written");
}

void Exchange(VirtualCard& card, Octets& contents, const Octets& command) {
  const Octets response = Send(card, command);
  const std::uint16_t word = StatusWord(response);
  if (command.size() > 5 && command[1] == kUpdateBinary) {
    const bool changed = std::exchange(contents, Contents(card)) != contents;
    Expect(!changed || word == 0x9000, "what a failed command must not write");
    if (word == 0x9000) ExpectRead(card, command);
  }
  if (word >> 8 == 0x61) {
    const Octets waiting = Collect(card, 0);
    Expect((waiting.size() & 0xFF) == (word & 0xFF), "the octets that wait");
    Expect(waiting == Collect(card, 7), "what waits, in pieces");
  }
  if (word >> 8 == 0x6C) {
    VirtualCard corrector = card;
    Octets corrected(command.begin(), command.begin() + 5);
    corrected[4] = static_cast<std::uint8_t>(word);
    const Octets exact = Send(corrector, corrected);
    Expect(StatusWord(exact) == 0x9000 && ((exact.size() - 2) & 0xFF) == (word & 0xFF),
           "the corrected Le");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  VirtualCard card;
  Octets contents = Contents(card);
  while (!input.Empty()) {
    const std::string_view line = input.Line();
    if (line.starts_with('R')) {
      card.Reset();
      Expect(contents == Contents(card), "what a reset keeps");
    } else {
      Exchange(card, contents, simulator::FromHex(line));
    }
  }
  Expect(contents == Contents(card), "what nothing has written");
  return 0;
}
