#include "readers/driver_test.h"

namespace orvane_test {
namespace {

using BsitReader = DriverOf<kBsit>;

TEST_F(BsitReader, IsOpenAndClosedWhateverTheOtherCallsSay) {
  module.Answer("bsit_SetSlot", 1);
  module.Answer("bsit_CloseHID", 1);
  EXPECT_EQ(OpenReader(1, ReaderKindBsit, 9600), 1);
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_EQ(ResetCard(), (Reply{0, kUntouched}));
  EXPECT_EQ(NewCalls(),
            "bsit_openHID(0, 0, 0) = 0\nbsit_SetSlot(0, 0) = 1\nbsit_CloseHID(0) = 1\n");
}

TEST_F(BsitReader, GoesOnWhenASlotIsRefused) {
  OpenAnew("05");
  EXPECT_EQ(ResetCard(), (Reply{1, kCardAtr}));
  EXPECT_NE(module.Journal().find("bsit_SetSlot(0, 5) = -1\n"), std::string::npos);
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
