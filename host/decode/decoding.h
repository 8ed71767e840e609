#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/text.h"

namespace host {

// A part of data, and what it says.
struct Field {
  std::string name;  // as its standard calls it; with blanks before it, a part of the field above
  std::string_view octets;  // hexadecimal digits of the text that was decoded; may be empty
  std::string meaning;
};

// Data taken apart.
struct Decoding {
  std::string_view standard;  // of the data as a whole
  std::vector<Field> fields;
  std::string fault;  // what is wrong behind the fields or with the whole; empty if nothing is
};

// Takes hexadecimal digits, two an octet, from the front.
class OctetReader {
 public:
  explicit OctetReader(std::string_view digits) : rest_(digits) {}
  size_t Left() const { return rest_.size() / 2; }  // in octets
  // The digits of so many octets, or of all that are left.
  std::string_view Take(size_t octets);

 private:
  std::string_view rest_;
};

// One bit of an octet, 8 being the highest, and what it says when it is 1; empty for one that says
// something together with others.
struct Flag {
  unsigned octet;  // counted from 1
  unsigned bit;
  std::string_view meaning;
};

// Adds each octet, and each of its bits that is 1. What has no flag is reserved.
void AddFlags(Decoding& decoding, std::span<const Flag> flags, std::string_view digits,
              const std::string& indent = "");

}  // namespace host
