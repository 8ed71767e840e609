#include <cstdint>

#include "conversions.h"
#include "orvane.h"

namespace {

struct Orvane {
  static bool Encode(const Octets& octets, std::string& out) {
    HexToAscii(octets.data(), out.data(), static_cast<std::int32_t>(octets.size()));
    return true;
  }

  static bool Decode(const std::string& text, bool, Octets& out) {
    return AsciiToHex(text.data(), out.data(), static_cast<std::int32_t>(text.size())) == 1;
  }
};

const bool kMeasured = MeasureConversions<Orvane>("Orvane");

}  // namespace
