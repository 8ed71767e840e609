#include <gtest/gtest.h>

#include "memory/failing_allocations.h"
#include "orvane.h"
#include "support/module_loading.h"

namespace orvane_test {
namespace {

// The vendor module here allocates nothing, so that every allocation that counts is the library's.
TEST(Memory, IsAskedForByOpeningAndNotByExchanges) {
  std::string why;
  ASSERT_NE(support::LoadModule(u8"" QUIET_WINSCARD, why), nullptr) << why;
  const auto open = [] { return OpenReaderA("Quiet", ReaderKindPcsc); };
  char response[8193] = "untouched";
  EXPECT_GT(FailuresOf(open,
                       [&] {
                         EXPECT_EQ(RunWith(0, [&] { return Reset(response); }), 0);
                         EXPECT_STREQ(response, "untouched");
                         EXPECT_EQ(RunWith(0, CloseReader), 0);
                         EXPECT_EQ(RunWith(0, [] { return GetReaderList(1, nullptr, 0, 1); }), 0);
                       }),
            0);
  for (int i = 0; i < 3; ++i) {
    int sent = 0;
    EXPECT_EQ(AllocationsOf([&] { sent = SendCommand("00A4040000", 10, response); }), 0);
    EXPECT_EQ(sent, 1);
    EXPECT_STREQ(response, "9000");
  }
}

}  // namespace
}  // namespace orvane_test
