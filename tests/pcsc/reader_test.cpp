// The library's PC/SC readers through its exports, down to a card behind the real service.

#include <algorithm>

#include "readers/reader_host.h"
#include "service_test.h"
#include "wait.h"

namespace orvane_test {
namespace {

using PcscReaders = ServiceTest;

TEST_F(PcscReaders, OpensEmptyAndFindsACardThatWasPulledAndPutBack) {
  const auto names = List(ReaderKindPcsc, 0, 0);
  const auto place = std::find(names.begin(), names.end(), std::string("3 0 0 ") + kReader);
  ASSERT_NE(place, names.end());
  ASSERT_EQ(OpenReader(static_cast<int>(place - names.begin()) + 1, ReaderKindPcsc, 9600), 1);
  const Reply noCard{0, kUntouched};
  for (int round = 0; round < 2; round++) {
    EXPECT_TRUE(WaitUntil([&] { return ResetCard() == noCard; }));
    EXPECT_EQ(Send("00A4040003A00000"), (Reply{0, ""}));
    ASSERT_TRUE(card_.Insert());
    EXPECT_TRUE(WaitUntil([&] { return ResetCard() == Reply{1, card_.Atr()}; }));
    EXPECT_TRUE(Send("00A4040008F04F5256414E4501").text.starts_with("6F298408F04F5256414E4501"));
    card_.Pull();
  }
  // A tool that another one replaces gives back what it has: the service has room for 200 contexts.
  for (int round = 0; round < 300; round++) {
    ASSERT_EQ(OpenReaderA(kReader, ReaderKindPcsc), 1) << round;
    ASSERT_EQ(OpenReaderA("x", ReaderKindFm8201), 0);
  }
}

}  // namespace
}  // namespace orvane_test
