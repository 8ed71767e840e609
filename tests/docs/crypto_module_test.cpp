// The example of a crypto module, and what its page says that it gives.
#include "docs/page.h"

namespace orvane_test {
namespace {

TEST(DocsCryptoModule, GivesWhatThePageSays) {
  const std::string page = ReadText("docs/crypto-module.md");
  EXPECT_FALSE(ExampleLines(page).empty());
  RunExamples(page, u8"" AES_CRYPTO);
}

}  // namespace
}  // namespace orvane_test
