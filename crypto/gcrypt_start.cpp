#include "gcrypt_start.h"

#include <gcrypt.h>

namespace crypto {
namespace {

constexpr char kOldest[] = "1.10.0";  // from here on a single cipher handle can allow weak keys

bool Start() {
  if (gcry_check_version(kOldest) == nullptr) return false;
  if (gcry_control(GCRYCTL_INITIALIZATION_FINISHED_P) != 0) return true;
  // No locked memory: it would come out of the host's allowance, setting it up can change the
  // process's privileges, and a key that came as the text of a script has been in ordinary memory
  // before. What is ours is wiped instead, and libgcrypt wipes its handles and numbers.
  gcry_control(GCRYCTL_DISABLE_SECMEM, 0);
  gcry_control(GCRYCTL_INITIALIZATION_FINISHED, 0);
  return true;
}

}  // namespace

bool StartGcrypt() {
  static const bool started = Start();
  return started;
}

}  // namespace crypto
