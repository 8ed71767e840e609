#include "host/decode/decoding.h"

#include <algorithm>

namespace host {

std::string_view OctetReader::Take(size_t octets) {
  const std::string_view taken = rest_.substr(0, 2 * octets);
  rest_.remove_prefix(taken.size());
  return taken;
}

void AddFlags(Decoding& decoding, std::span<const Flag> flags, std::string_view digits,
              const std::string& indent) {
  for (size_t octet = 1; octet <= digits.size() / 2; ++octet) {
    const std::string_view part = digits.substr(2 * (octet - 1), 2);
    const unsigned value = HexValue(part);
    decoding.fields.push_back(
        {indent + "byte " + std::to_string(octet), part, value == 0 ? "no bit set" : ""});
    for (unsigned bit = 8; bit > 0; --bit) {
      if ((value >> (bit - 1) & 1) == 0) continue;
      const auto flag = std::find_if(flags.begin(), flags.end(), [&](const Flag& f) {
        return f.octet == octet && f.bit == bit;
      });
      const std::string meaning(flag == flags.end() ? "reserved" : flag->meaning);
      if (meaning.empty()) continue;
      decoding.fields.push_back({indent + "  bit " + std::to_string(bit), "", meaning});
    }
  }
}

}  // namespace host
