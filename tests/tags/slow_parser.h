#pragma once

#include <map>
#include <string>

namespace orvane_test {

/// Parses BER-TLV text in the plainest way, level by level on copies of the text. Records are whole
/// blocks as TagParsing_GetTag hands them over.
class SlowParser {
 public:
  bool Parse(std::string text);

  std::map<std::string, std::string> records;
};

}  // namespace orvane_test
