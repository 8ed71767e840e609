#include <gcrypt.h>
#include <gtest/gtest.h>

#include "crypto/default_provider.h"
#include "engine/script_host.h"

namespace orvane_test {
namespace {

// A host with keys of its own that comes to libgcrypt after the module.
TEST(SecureMemory, IsLeftToTheHost) {
  ASSERT_NE(kDefaultProvider.CryptoHash, nullptr);
  EXPECT_EQ(RunOne("@strlen(@des(0123456789ABCDEF,11,1) @HASH(11) @RSAPUBENC(CA1,11,41))").text,
            "59");
  gcry_control(GCRYCTL_SUSPEND_SECMEM_WARN);
  gcry_control(GCRYCTL_INIT_SECMEM, 16384, 0);
  gcry_control(GCRYCTL_INITIALIZATION_FINISHED, 0);
  void* const key = gcry_malloc_secure(16);
  EXPECT_EQ(gcry_is_secure(key), 1);
  gcry_free(key);
}

}  // namespace
}  // namespace orvane_test
