#include "host/reader_address.h"

#include <gtest/gtest.h>

#include "host/failure.h"

namespace host {
namespace {

struct Row {
  std::string_view text;
  int32_t kind;
  std::optional<int32_t> port;
  std::string_view name;
};

TEST(ReaderAddress, IsKindAndPortOrName) {
  const Row rows[] = {
      {"Simulated Reader 0", 3, std::nullopt, "Simulated Reader 0"},
      {"1", 3, 1, ""},
      {"5:100", 5, 100, ""},
      {"12:BSIT:2", 12, std::nullopt, "BSIT:2"},
      {"10:127.0.0.1:8000", 10, std::nullopt, "127.0.0.1:8000"},
      {":1", 3, std::nullopt, ":1"},
      {"-1", 3, std::nullopt, "-1"},
      {"5:COM100(D8USB)", 5, std::nullopt, "COM100(D8USB)"},
  };
  for (const Row& row : rows) {
    const ReaderAddress address = ReadReaderAddress(row.text, 3);
    EXPECT_EQ(address.kind, row.kind) << row.text;
    EXPECT_EQ(address.port, row.port) << row.text;
    EXPECT_EQ(address.name, row.name) << row.text;
  }
  EXPECT_EQ(ReadReaderAddress("BSIT:2", 12).kind, 12);
  for (const char* text : {"", "3:", "9:1", "0:1", "13:X", "99999999999:1", "3:99999999999"}) {
    EXPECT_THROW(ReadReaderAddress(text, 3), Failure) << text;
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
