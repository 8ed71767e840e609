#include <gtest/gtest.h>

#include "orvane.h"
#include "tags/working_folder.h"

namespace orvane_test {
namespace {

TEST(LogLineEnds, AreCarriageReturnAndLineFeed) {
  const WorkingFolder folder;
  for (const char* text : {"one\ntwo\n", "\n\n", "a\r\nb", "a\rb\x1A", "none"}) {
    AsciiLog("log.txt", text);
    // Behind an end-of-text character, too, the next entry is appended.
    const unsigned char octet = 0x0A;
    HexLog("log.txt", &octet, 1);
  }
  EXPECT_EQ(ReadFile("log.txt"),
            "one\r\ntwo\r\n0A\r\n\r\n0Aa\r\r\nb0Aa\rb\x1A"
            "0Anone0A");
}

}  // namespace
}  // namespace orvane_test
