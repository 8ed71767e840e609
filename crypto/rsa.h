#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace crypto {

// data to the power of exponent, modulo modulus, without any padding. All are hexadecimal numbers,
// most significant digit first; the result has two upper-case digits for every octet of modulus.
// Nothing for a text that is empty or holds anything but digits, a modulus of zero, data not below
// the modulus, and numbers above 16,384 bits, which would take more than seconds.
std::optional<std::string> RsaPublic(std::string_view modulus, std::string_view exponent,
                                     std::string_view data);

}  // namespace crypto
