#include "readers/driver_test.h"

namespace orvane_test {
namespace {

class BsitReader : public DriverTest {
 protected:
  BsitReader() : DriverTest("STJZZ_BSIT") {}
};

TEST_F(BsitReader, OpensReaders) {
  const char* const first = "bsit_openHID(0, 0, 0) = 0\nbsit_SetSlot(0, 0) = 0\n";
  const char* const second = "bsit_openHID(0, 1, 0) = 0\nbsit_SetSlot(0, 0) = 0\n";
  const OpenRow rows[] = {
      {nullptr, 1, 1, first},
      {nullptr, 3, 0, "bsit_openHID(0, 2, 0) = -1\n"},
      {nullptr, 65537, 1, first},
      {nullptr, 0, 0, "bsit_openHID(0, 65535, 0) = -1\n"},
      {"BSIT:2", 0, 1, second},
      {"the BSIT:1", 0, 1, first},
      {"BSIT:", 0, 0, "bsit_openHID(0, 65535, 0) = -1\n"},
      {"BSIT1", 0, 0, ""},
  };
  for (const OpenRow& row : rows) {
    StartAnew();
    EXPECT_EQ(row.Open(ReaderKindBsit), row.expected) << row;
    EXPECT_EQ(NewCalls(), row.calls) << row;
    EXPECT_EQ(CloseReader(), 1);
    EXPECT_EQ(NewCalls(), row.expected == 1 ? "bsit_CloseHID(0) = 0\n" : "") << row;
  }
}

TEST_F(BsitReader, IsOpenAndClosedWhateverTheOtherCallsSay) {
  module.Answer("bsit_openHID", -2);
  module.Answer("bsit_SetSlot", 1);
  module.Answer("bsit_CloseHID", 1);
  EXPECT_EQ(OpenReader(1, ReaderKindBsit, 9600), 1);
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_EQ(ResetCard(), (Reply{0, kUntouched}));
  EXPECT_EQ(NewCalls(),
            "bsit_openHID(0, 0, 0) = -2\nbsit_SetSlot(-2, 0) = 1\nbsit_CloseHID(-2) = 1\n");
}

TEST_F(BsitReader, GoesOnWhenASlotIsRefused) {
  ASSERT_EQ(OpenReader(1, ReaderKindBsit, 9600), 1);
  NewCalls();
  ChangeSlot("05");
  EXPECT_EQ(NewCalls(), "bsit_SetSlot(0, 5) = -1\n");
  EXPECT_EQ(ResetCard(), (Reply{1, kCardAtr}));
}

TEST_F(BsitReader, ReadsTheAtr) {
  const std::string longest(512, 'A');
  const struct {
    std::int64_t result;
    const char* atr;
    std::int64_t length;
    Reply expected;
  } rows[] = {
      {0, "3B0102", SIMULATOR_TRUE_LENGTH, {1, "3B0102"}},
      {0, "3B", 3, {1, "3B0000"}},
      {0, "", SIMULATOR_TRUE_LENGTH, {1, ""}},
      {0, longest.c_str(), SIMULATOR_TRUE_LENGTH, {1, longest}},
      {0, longest.c_str(), 257, {0, kUntouched}},
      {0, "3B", 0x7FFFFFFF, {0, kUntouched}},
      {0, "3B", -1, {0, kUntouched}},
      {1, "3B", SIMULATOR_TRUE_LENGTH, {0, kUntouched}},
  };
  ASSERT_EQ(OpenReader(1, ReaderKindBsit, 9600), 1);
  for (const auto& row : rows) {
    module.Answer("bsit_ResetCard", row.result, row.atr, row.length);
    EXPECT_EQ(ResetCard(), row.expected) << row.result << ' ' << row.atr << ' ' << row.length;
  }
}

TEST_F(BsitReader, ListsWhatTheLibraryCounts) {
  EXPECT_EQ(List(ReaderKindBsit, 9, 1),
            (std::vector<std::string>{"12 1 1 BSIT:1", "12 1 2 BSIT:2"}));
  const std::pair<std::int64_t, std::size_t> rows[] = {
      {0, 0}, {-3, 0}, {16, 16}, {17, 16}, {0x7FFFFFFF, 16}};
  for (const auto& [count, listed] : rows) {
    module.Answer("bsit_gethidlist", count);
    EXPECT_EQ(List(ReaderKindBsit, 0, 0).size(), listed) << count;
  }
}

}  // namespace
}  // namespace orvane_test
