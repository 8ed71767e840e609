#include <openssl/crypto.h>

#include "conversions.h"

namespace {

struct OpenSsl {
  static bool Encode(const Octets& octets, std::string& out) {
    const std::size_t room = out.size() + 1;  // for the terminator, which a string has anyway
    return OPENSSL_buf2hexstr_ex(out.data(), room, nullptr, octets.data(), octets.size(), '\0') ==
           1;
  }

  static bool Decode(const std::string& text, bool blanks, Octets& out) {
    const char separator = blanks ? ' ' : '\0';
    return OPENSSL_hexstr2buf_ex(out.data(), out.size(), nullptr, text.c_str(), separator) == 1;
  }
};

const bool kMeasured = MeasureConversions<OpenSsl>("OpenSSL");

}  // namespace
