#pragma once

// Octets and their hexadecimal text.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace simulator {

using Octets = std::vector<uint8_t>;

// Reads hexadecimal text in either case, skips blanks, and ends at the first other character. An
// odd last digit is dropped.
Octets FromHex(std::string_view text);

// Upper-case digits without blanks.
std::string ToHex(std::span<const uint8_t> octets);

// The characters of text as octets.
Octets FromText(std::string_view text);

}  // namespace simulator
