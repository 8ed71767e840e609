#include "host/reader_address.h"

#include <gtest/gtest.h>

#include "host/failure.h"

namespace host {
namespace {

TEST(ReaderAddress, IsKindAndPortOrName) {
  for (const char* text : {"", "3:", "9:1", "0:1", "13:X", "99999999999:1", "3:99999999999"}) {
    EXPECT_THROW(ReadReaderAddress(text, 3), Failure) << text;
  }
  for (const char* name : {":1", "-1", "BSIT:2"}) {
    EXPECT_EQ(ReadReaderAddress(name, 3).name, name);
    EXPECT_EQ(ReadReaderAddress(name, 3).kind, 3);
  }
}

TEST(ReaderName, IsMatchedExactlyThenWithoutBlanksThenNotAtAll) {
  const std::vector<std::string> listed = {"Acme Two 0", "Ac meTwo0", "AcmeTwo1", "Acme Two 1",
                                           "Example 3x21 0"};
  EXPECT_EQ(MatchReaderName("Acme Two 0", listed), "Acme Two 0");
  EXPECT_EQ(MatchReaderName("Example3x210", listed), "Example 3x21 0");
  EXPECT_EQ(MatchReaderName("AcmeTwo0", listed), "AcmeTwo0");  // two could be meant
  EXPECT_EQ(MatchReaderName("AcmeTwo9", listed), "AcmeTwo9");
}

}  // namespace
}  // namespace host
