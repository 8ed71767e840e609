#include "common/tlv.h"

namespace simulator {
namespace {

// The octets of number without leading zeros, at least one.
Octets BigEndian(uint64_t number) {
  Octets octets;
  do {
    octets.insert(octets.begin(), static_cast<uint8_t>(number));
    number >>= 8;
  } while (number != 0);
  return octets;
}

void Append(Octets& target, const Octets& more) {
  target.insert(target.end(), more.begin(), more.end());
}

}  // namespace

Octets Tlv(uint32_t tag, const Octets& value) {
  Octets object = BigEndian(tag);
  const Octets length = BigEndian(value.size());
  if (value.size() > 0x7F) object.push_back(static_cast<uint8_t>(0x80 | length.size()));
  Append(object, length);
  Append(object, value);
  return object;
}

Octets Tlv(uint32_t tag, std::string_view hexadecimalValue) {
  return Tlv(tag, FromHex(hexadecimalValue));
}

Octets Tlv(uint32_t tag, std::initializer_list<Octets> parts) {
  Octets value;
  for (const Octets& part : parts) Append(value, part);
  return Tlv(tag, value);
}

}  // namespace simulator
