#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/text.h"

namespace host {

// A part of the data and its meaning.
struct Field {
  std::string name;         // as in the standard; indented, a part of the field above
  std::string_view octets;  // hexadecimal digits of the decoded text; may be empty
  std::string meaning;
};

// Decoded data.
struct Decoding {
  std::string_view standard;  // the standard for the data as a whole
  std::vector<Field> fields;
  std::string fault;  // a fault behind the fields or of the whole; empty if there is none
};

// Takes octets from the front of hexadecimal digits.
class OctetReader {
 public:
  explicit OctetReader(std::string_view digits) : rest_(digits) {}
  size_t Left() const { return rest_.size() / 2; }  // in octets
  // The digits of the next octets, or of all that are left if there are fewer.
  std::string_view Take(size_t octets);

 private:
  std::string_view rest_;
};

// One bit of an octet, 8 being the highest, and its meaning when it is 1. The meaning is empty for
// a bit that has one only together with others.
struct Flag {
  unsigned octet;  // counted from 1
  unsigned bit;
  std::string_view meaning;
};

// Adds each octet, and each of its bits that is 1. A bit without a flag is reserved.
void AddFlags(Decoding& decoding, std::span<const Flag> flags, std::string_view digits,
              const std::string& indent = "");

}  // namespace host
