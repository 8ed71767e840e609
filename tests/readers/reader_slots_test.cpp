#include "readers/driver_test.h"

namespace orvane_test {
namespace {

class ReaderSlots : public ReaderTest {};

TEST_F(ReaderSlots, GiveNothingBeforeTheyAreOpened) {
  SetReader(7);
  EXPECT_EQ(CloseReader(), 0);
  EXPECT_EQ(ResetCard(), (Reply{0, kUntouched}));
  EXPECT_EQ(Send("00A40400"), (Reply{0, ""}));
  ChangeSlot("0C");
}

TEST_F(ReaderSlots, OfTheKindWithNothingBehindIt) {
  EXPECT_EQ(OpenReaderA("COM1", ReaderKindFm8201), 0);
  EXPECT_EQ(Send("00A40400"), (Reply{1, ""}));
  EXPECT_EQ(ResetCard(), (Reply{0, kUntouched}));
  ChangeSlot("01");
  for (const int kind : {6, 9}) EXPECT_TRUE(List(kind, 4, 4).empty());
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_EQ(CloseReader(), 1);
  for (const int kind : {9, 99, -1, 0x7FFFFFFF}) {
    OpenReaderA("COM1", ReaderKindFm8201);
    EXPECT_EQ(OpenReader(1, kind, 9600), 0) << kind;
    EXPECT_EQ(Send("00A40400"), (Reply{0, ""})) << "kind " << kind << " left a tool in place";
    EXPECT_EQ(CloseReader(), 0);
  }
}

TEST_F(ReaderSlots, RefuseCommandsThatAreTooLong) {
  OpenReaderA("", ReaderKindFm8201);
  EXPECT_EQ(Send(std::string(8192, 'A')), (Reply{1, ""}));
  EXPECT_EQ(Send(std::string(8193, 'A')), (Reply{0, ""}));
  char response[8193] = "x";
  EXPECT_EQ(SendCommand("00", -1, response), 1);
  EXPECT_STREQ(response, "");
}

TEST_F(ReaderSlots, AnswerInTheAreaOfTheCommand) {
  const support::SimulatedModule module("STJZZ_BSIT");
  ASSERT_EQ(OpenReader(1, ReaderKindBsit, 9600), 1);
  char area[8193] = "00A4000C023F00";
  EXPECT_EQ(SendCommand(area, 14, area), 1);
  EXPECT_STREQ(area, "9000");
}

TEST_F(ReaderSlots, RefuseCallsFromInsideACall) {
  static int callsBack;
  callsBack = 0;
  const support::SimulatedModule module("STJZZ_BSIT");
  const auto session = [&](void (*callBack)()) {
    return TakeSteps(kBsit, module,
                     "name BSIT:1;port 1;slot 00;reset;send 00A4000C023F00;list 0 0;close;port 1;"
                     "kind 6;send 00",  // closes the other kind
                     Calls::kWhole, callBack);
  };
  const std::string undisturbed = session(nullptr);
  const std::string disturbed = session([] {
    ++callsBack;
    EXPECT_EQ(OpenReader(1, ReaderKindFm8201, 9600), 0);
    EXPECT_EQ(Send("00"), (Reply{0, ""}));
    EXPECT_EQ(OpenReaderA("BSIT:2", ReaderKindBsit), 0);
    EXPECT_EQ(ResetCard(), (Reply{0, kUntouched}));
    EXPECT_EQ(List(ReaderKindTyCom, 1, 1), std::vector<std::string>{});
    EXPECT_EQ(CloseReader(), 0);
    EXPECT_EQ(SetReader(3), 0);
    ChangeSlot("00");
    char text[512] = "x";
    EXPECT_EQ(RunScript("%INNER = 1", text), ScriptException);
    EXPECT_STREQ(text, "");
  });
  EXPECT_EQ(disturbed, undisturbed);
  EXPECT_EQ(callsBack, 9);
  EXPECT_EQ(GetVarValue("%INNER"), ScriptUndefinedVariable);
}

}  // namespace
}  // namespace orvane_test
