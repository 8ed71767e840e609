#pragma once

#include <string>
#include <string_view>

#include "orvane.h"

namespace orvane {

// A record of the dictionary, stored in the room that its texts need. If an octet behind a
// terminator is not zero, the whole record is stored.
class PackedRecord {
 public:
  // A field without a terminator loses its last character.
  explicit PackedRecord(TagdictData record);

  // A record with zeros behind its texts. The texts fit their fields.
  PackedRecord(std::string_view tag, std::string_view shortText, std::string_view longText);

  const char* Tag() const { return octets_.c_str(); }
  TagdictData Unpack() const;

 private:
  // The three texts with zeros between them, or all octets of the record, which are always more.
  std::string octets_;
};

}  // namespace orvane
