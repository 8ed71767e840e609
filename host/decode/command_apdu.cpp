#include "host/decode/command_apdu.h"

#include <array>

#include "host/command.h"
#include "host/text.h"

namespace host {
namespace {

constexpr std::string_view kStandard = "command APDU, ISO/IEC 7816-4";

std::string Class(unsigned octet) {
  constexpr std::array<std::string_view, 4> kMessaging = {
      "no secure messaging", "proprietary secure messaging",
      "secure messaging, header not authenticated", "secure messaging, header authenticated"};
  if (octet == 0xFF) return "for the reader (PC/SC); no card's";
  if ((octet & 0x80) != 0) return "proprietary class";
  if ((octet & 0xE0) == 0x20) return "reserved class";
  const bool further = (octet & 0x40) != 0;
  const unsigned messaging = further ? (octet >> 4 & 2) : (octet >> 2 & 3);
  const unsigned channel = further ? 4 + (octet & 0xF) : (octet & 3);
  return "interindustry class, " + std::string(kMessaging[messaging]) + ", logical channel " +
         std::to_string(channel) + ((octet & 0x10) != 0 ? ", not the last of its chain" : "");
}

}  // namespace

Decoding DecodeCommandApdu(std::string_view digits) {
  constexpr size_t kHeader = 4;
  if (digits.size() < 2 * kHeader) {
    return {
        .standard = kStandard, .fields = {}, .fault = "it is cut: its header alone has 4 bytes"};
  }
  const CardCommand command = ReadCommand(digits, Framing::kApdu);
  Decoding decoding{.standard = kStandard, .fields = {}, .fault = {}};
  const auto part = [&](size_t begin, size_t end) {
    return digits.substr(2 * begin, 2 * (end - begin));
  };
  const auto add = [&](const char* name, std::string_view octets, const std::string& meaning) {
    if (!octets.empty()) decoding.fields.push_back({name, octets, meaning});
  };
  const std::string_view instruction = CommandName(command);
  const std::string_view data = part(command.dataBegin, command.dataEnd);
  add("CLA", part(0, 1), Class(HexValue(part(0, 1))));
  add("INS", part(1, 2), std::string(instruction.empty() ? "unknown" : instruction));
  add("P1", part(2, 3), "");
  add("P2", part(3, 4), "");
  if (!command.lengthFits) {
    add("rest", data, "");
    decoding.fault = "Lc does not fit the data";
    return decoding;
  }
  const bool onlyLe = data.empty();
  if (!onlyLe) add("Lc", part(4, command.dataBegin), Counted(data.size() / 2, "byte") + " of data");
  add("data", data, "");
  add("Le", onlyLe ? part(4, command.Octets()) : part(command.dataEnd, command.Octets()),
      "up to " + Counted(command.expectedData, "byte"));
  return decoding;
}

}  // namespace host
