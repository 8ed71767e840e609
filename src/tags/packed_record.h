#pragma once

#include <string>
#include <string_view>

#include "orvane.h"

namespace orvane {

// A record of the dictionary in the room that its texts take. If an octet behind a terminator is
// not zero, the record is kept whole.
class PackedRecord {
 public:
  // A field without a terminator loses its last character.
  explicit PackedRecord(TagdictData record);

  // With zeros behind the texts, which fit their fields.
  PackedRecord(std::string_view tag, std::string_view shortText, std::string_view longText);

  const char* Tag() const { return octets_.c_str(); }
  TagdictData Unpack() const;

 private:
  // The three texts with zeros between them, or all octets of the record, which are always more.
  std::string octets_;
};

}  // namespace orvane
