// The example of a crypto module, as the page shows it.
#include "docs/page.h"

namespace orvane_test {
namespace {

const std::string kPage = ReadText("docs/crypto-module.md");

TEST(DocsCryptoModule, IsShownWhole) {
  const std::string source = ReadText("examples/crypto/aes_crypto.c");
  EXPECT_NE(kPage.find("\n```c\n" + source + "```\n"), kPage.npos);
}

TEST(DocsCryptoModule, GivesWhatThePageSays) { RunExamples(kPage, u8"" AES_CRYPTO); }

}  // namespace
}  // namespace orvane_test
