// The library's PC/SC readers through its exports, down to a card behind the real service.

#include <string>

#include "orvane.h"
#include "service_test.h"
#include "wait.h"

namespace {

constexpr char kSelectApplication[] = "00A4040008F04F5256414E4501";
constexpr char kSelectUnknown[] = "00A4040003A00000";
constexpr char kGetChallenge[] = "0084000008";

struct Response {
  int32_t result;
  std::string text;
};

Response Send(const std::string& command) {
  char text[8193];
  const int32_t result = SendCommand(command.c_str(), static_cast<int32_t>(command.size()), text);
  return {result, text};
}

// The ATR, or "no card" where Reset fails.
std::string ResetText() {
  char atr[1025];
  return Reset(atr) == 1 ? atr : "no card";
}

class PcscReader : public ServiceTest {
 protected:
  // A tool that another one replaces gives back what it has of the service.
  void TearDown() override {
    for (uint32_t index : {0U, 1U}) {
      SetReader(index);
      OpenReader(1, ReaderKindFm8201, 9600);
    }
    SetReader(0);
  }

  bool ResetBecomes(const std::string& expected) {
    return WaitUntil([&] { return ResetText() == expected; });
  }

  void ExpectExchanges() {
    const Response selected = Send(kSelectApplication);
    EXPECT_EQ(selected.result, 1);
    EXPECT_EQ(selected.text.substr(0, 2), "6F");
    EXPECT_NE(selected.text.find("8408F04F5256414E4501"), std::string::npos) << selected.text;
  }
};

TEST_F(PcscReader, IsListedAndOpensByPlaceAndName) {
  ASSERT_TRUE(card_.Insert());
  ReaderInfo readers[16];
  const int32_t count = GetReaderList(ReaderKindPcsc, readers, 0, 0);
  ASSERT_GE(count, 2);
  for (int32_t i = 0; i < count; i++) {
    const std::string name = readers[i].name;
    EXPECT_EQ(readers[i].kind, ReaderKindPcsc);
    EXPECT_EQ(readers[i].hasPort, 0);
    EXPECT_EQ(readers[i].port, 0);
    EXPECT_EQ(OpenReaderA(readers[i].name, ReaderKindPcsc), 1) << name;
    EXPECT_EQ(OpenReader(i + 1, ReaderKindPcsc, 9600), 1) << name;
    if (name != kReader && name != kEmptyReader) continue;
    EXPECT_TRUE(ResetBecomes(name == kReader ? card_.Atr() : "no card")) << name;
  }
  EXPECT_EQ(OpenReader(0, ReaderKindPcsc, 9600), 0);
  EXPECT_EQ(OpenReader(count + 1, ReaderKindPcsc, 9600), 0);
  EXPECT_EQ(OpenReaderA("No such reader", ReaderKindPcsc), 0);
  EXPECT_EQ(GetReaderList(ReaderKindPcsc, readers, 0, 1), 1);
}

TEST_F(PcscReader, ExchangesCommands) {
  ASSERT_TRUE(card_.Insert());
  ASSERT_EQ(OpenReaderA(kReader, ReaderKindPcsc), 1);
  ASSERT_TRUE(ResetBecomes(card_.Atr()));

  ExpectExchanges();
  const auto commands = card_.Commands();
  ASSERT_EQ(commands.size(), 2U);
  EXPECT_EQ(commands[0], kSelectApplication);
  EXPECT_EQ(commands[1].substr(0, 8), "00C00000");

  const Response unknown = Send(kSelectUnknown);
  EXPECT_EQ(unknown.result, 0);
  EXPECT_EQ(unknown.text, "6A82");
}

TEST_F(PcscReader, OpensEmptyAndFindsACardThatWasPulledAndPutBack) {
  ASSERT_EQ(OpenReaderA(kReader, ReaderKindPcsc), 1);
  EXPECT_EQ(ResetText(), "no card");
  const Response none = Send(kGetChallenge);
  EXPECT_EQ(none.result, 0);
  EXPECT_EQ(none.text, "");
  for (int round = 0; round < 3; round++) {
    ASSERT_TRUE(card_.Insert());
    EXPECT_TRUE(ResetBecomes(card_.Atr()));
    ExpectExchanges();
    card_.Pull();
    EXPECT_EQ(Send(kGetChallenge).result, 0);
    EXPECT_TRUE(ResetBecomes("no card"));
    EXPECT_EQ(Send(kGetChallenge).result, 0);
  }
}

// The service has room for 200 contexts.
TEST_F(PcscReader, LeavesNothingWithTheServiceWhenItGoes) {
  for (int round = 0; round < 600; round++) {
    ASSERT_EQ(OpenReaderA(kReader, ReaderKindPcsc), 1) << round;
    ASSERT_EQ(OpenReaderA("x", ReaderKindFm8201), 0);
  }
}

TEST_F(PcscReader, SharesACardBetweenTwoReaders) {
  ASSERT_TRUE(card_.Insert());
  for (uint32_t index : {0U, 1U}) {
    ASSERT_EQ(SetReader(index), 1);
    ASSERT_EQ(OpenReaderA(kReader, ReaderKindPcsc), 1);
    ASSERT_TRUE(ResetBecomes(card_.Atr()));
  }
  for (uint32_t index : {0U, 1U}) {
    SetReader(index);
    ExpectExchanges();
    EXPECT_EQ(CloseReader(), 1);
    EXPECT_EQ(ResetText(), "no card");
  }
}

}  // namespace
