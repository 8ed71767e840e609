#include "gcrypt_start.h"

#include <gcrypt.h>

namespace crypto {
namespace {

constexpr char kOldest[] = "1.10.0";  // from here on a single cipher handle can allow weak keys

}  // namespace

bool StartGcrypt() {
  static const bool started = gcry_check_version(kOldest) != nullptr;
  return started;
}

}  // namespace crypto
