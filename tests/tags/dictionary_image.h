#pragma once

#include <array>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "orvane.h"

namespace orvane_test {

/// A record's texts.
struct Texts {
  std::string tag;
  std::string shortText;
  std::string longText;
  bool operator==(const Texts&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Texts& texts);

/// With zeros behind the texts, which fit their fields.
TagdictData MakeRecord(const Texts& texts);

Texts TextsOf(const TagdictData& record);

/// The low octets of a number, the lowest first.
std::string LittleEndian(std::uint64_t number, std::size_t octets);

/// As the dictionary writes it. Below 65,534 characters.
std::string FileText(const std::string& text);

/// A whole file, as the dictionary writes it.
std::string FileImage(const std::vector<Texts>& records);

}  // namespace orvane_test
