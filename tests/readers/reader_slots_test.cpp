#include <gtest/gtest.h>

#include <functional>
#include <tuple>

#include "readers/reader_host.h"
#include "support/simulated_module.h"

namespace orvane_test {
namespace {

using Lines = std::vector<std::string>;

class ReaderSlots : public ReaderTest {};

TEST_F(ReaderSlots, GiveNothingBeforeTheyAreOpened) {
  SetReader(7);
  EXPECT_EQ(CloseReader(), 0);
  EXPECT_EQ(ResetCard(), (Reply{0, kUntouched}));
  EXPECT_EQ(Send("00A40400"), (Reply{0, ""}));
  ChangeSlot("0C");
}

TEST_F(ReaderSlots, AreSixteen) {
  EXPECT_EQ(SetReader(15), 1);
  EXPECT_EQ(OpenReader(1, ReaderKindFm8201, 9600), 0);
  EXPECT_EQ(Send("00"), (Reply{1, ""}));
  EXPECT_EQ(SetReader(16), 0);
  EXPECT_EQ(SetReader(0xFFFFFFFF), 0);
  EXPECT_EQ(Send("00"), (Reply{1, ""}));  // still the reader chosen before
  EXPECT_EQ(SetReader(0), 1);
  EXPECT_EQ(Send("00"), (Reply{0, ""}));
}

TEST_F(ReaderSlots, OfTheKindWithNothingBehindIt) {
  EXPECT_EQ(OpenReaderA("COM1", ReaderKindFm8201), 0);
  EXPECT_EQ(Send("00A40400"), (Reply{1, ""}));
  EXPECT_EQ(ResetCard(), (Reply{0, kUntouched}));
  ChangeSlot("01");
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_EQ(CloseReader(), 1);
  for (const int kind : {9, 13, -1, 0x7FFFFFFF}) {
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

// What a session gives, and the library's journal of it, when each call of the library first calls
// back as told.
Lines Session(void (*callBack)()) {
  const support::SimulatedModule module("STJZZ_BSIT");
  ReaderTest::EmptySlots();
  SetReader(2);
  ReaderInfo list[16];
  Lines outcomes;
  const std::function<Reply()> calls[] = {
      [] {
        return Reply{OpenReaderA("BSIT:1", ReaderKindBsit), ""};
      },
      [] {
        return Reply{OpenReader(1, ReaderKindBsit, 9600), ""};
      },
      [] { return ChangeSlot("00"), Reply{}; },
      [] { return ResetCard(); },
      [] { return Send("00A4000C023F00"); },
      [&] {
        return Reply{GetReaderList(ReaderKindBsit, list, 0, 0), list[1].name};
      },
      [] {
        return Reply{CloseReader(), ""};
      },
      [] {
        return Reply{OpenReader(1, ReaderKindBsit, 9600), ""};
      },
      [] {
        return Reply{OpenReader(1, ReaderKindFm8201, 9600), ""};
      },  // closes the other kind
      [] { return Send("00"); }};
  for (const auto& call : calls) {
    module.CallBack(callBack);
    outcomes.push_back(testing::PrintToString(call()));
  }
  outcomes.push_back(module.Journal());
  return outcomes;
}

TEST_F(ReaderSlots, RefuseCallsFromInsideACall) {
  static int callsBack;
  callsBack = 0;
  const Lines undisturbed = Session(nullptr);
  const Lines disturbed = Session([] {
    ++callsBack;
    EXPECT_EQ(OpenReader(1, ReaderKindFm8201, 9600), 0);
    EXPECT_EQ(Send("00"), (Reply{0, ""}));
    EXPECT_EQ(OpenReaderA("BSIT:2", ReaderKindBsit), 0);
    EXPECT_EQ(ResetCard(), (Reply{0, kUntouched}));
    EXPECT_EQ(List(ReaderKindTyCom, 1, 1), Lines{});
    EXPECT_EQ(CloseReader(), 0);
    EXPECT_EQ(SetReader(3), 0);
    ChangeSlot("00");
    char text[512];
    EXPECT_EQ(RunScript("%INNER = 1", text), ScriptException);
  });
  EXPECT_EQ(disturbed, undisturbed);
  EXPECT_EQ(callsBack, 9);
  EXPECT_EQ(GetVarValue("%INNER"), ScriptUndefinedVariable);
}

Lines Ports(int kind, const std::string& prefix, int count) {
  Lines lines;
  for (int port = 1; port <= count; ++port) {
    const std::string number = std::to_string(port);
    lines.push_back(std::to_string(kind) + " 1 " + number + ' ' + prefix + number);
  }
  return lines;
}

Lines operator+(Lines lines, const std::string& last) {
  lines.push_back(last);
  return lines;
}

TEST_F(ReaderSlots, ListThePortsOfReadersThatCannotBeAsked) {
  const std::string d8Usb = "5 1 100 COM100(D8USB)";
  const std::string icrUsb = "11 1 1001 ICR-COM1001(ICRUSB)";
  const std::tuple<int, int, int, Lines> rows[] = {
      {9, 4, 4, {}},
      {6, 4, 4, {}},
      {2, 4, 0, Ports(2, "COM", 4)},
      {2, 4, 2, Ports(2, "COM", 2)},
      {2, 2, 4, Ports(2, "COM", 2)},
      {2, 20, -1, Ports(2, "COM", 20)},
      {2, 0, 0, {}},
      {2, -5, 3, {}},
      {4, 0, 0, {"4 0 0 WDUSB1"}},
      {4, 9, 9, {"4 0 0 WDUSB1"}},
      {5, 0, 0, {d8Usb}},
      {5, 2, 1, Ports(5, "COM", 2) + d8Usb},
      {5, 15, 0, Ports(5, "COM", 15) + d8Usb},
      {5, 16, 0, Ports(5, "COM", 16)},
      {5, 17, 0, Ports(5, "COM", 16)},
      {7, 3, 2, Ports(7, "COM", 2)},
      {8, 3, 0, Ports(7, "COM", 3)},
      {11, 0, 0, {icrUsb}},
      {11, -1, 1, {icrUsb}},
      {11, 2, 2, Ports(11, "ICR-COM", 2)},
      {11, 2, 3, Ports(11, "ICR-COM", 2) + icrUsb},
      {11, 2, 0, Ports(11, "ICR-COM", 2) + icrUsb},
  };
  for (const auto& [kind, count, max, expected] : rows) {
    EXPECT_EQ(List(kind, count, max), expected) << kind << ' ' << count << ' ' << max;
  }
}

// Every command's octets, as the reader's library got them.
TEST_F(ReaderSlots, DecodeTheCommandText) {
  const support::SimulatedModule winscard("winscard");
  const std::pair<const char*, std::string> rows[] = {{"00A4 0400", "00A40400"},
                                                      {"00 A4 04 00", "00A4040000"},
                                                      {"00a4040aB", "00A4040A"},
                                                      {"00G1", "0000"},
                                                      {"0", ""},
                                                      {"", ""}};
  ASSERT_EQ(OpenReaderA("Simulated Reader 0", ReaderKindPcsc), 1);
  for (const auto& [text, sent] : rows) {
    winscard.Restart();
    winscard.Answer("SCardTransmit", 0, "9000");
    EXPECT_EQ(Send(text), (Reply{1, "9000"}));
    EXPECT_NE(winscard.Journal().find(", 1, " + sent + ") ="), std::string::npos) << text;
  }
}

}  // namespace
}  // namespace orvane_test
