#pragma once

#include <string>
#include <string_view>

namespace host {

// SHA-256 (FIPS 180-4) as 64 lower-case hexadecimal digits.
std::string Sha256(std::string_view text);

}  // namespace host
