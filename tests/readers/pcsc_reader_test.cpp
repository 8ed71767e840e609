#include <gtest/gtest.h>

#include <functional>
#include <sstream>

#include "readers/reader_host.h"
#include "support/simulated_module.h"

namespace orvane_test {
namespace {

using support::SimulatedModule;

constexpr char kReader[] = "Simulated Reader 0";
constexpr char kEmptyReader[] = "Simulated Reader 1";
constexpr char kAtr[] = "3B6A0000803180664F5256414E45";
constexpr int64_t kRemovedCard = 0x80100069;
constexpr int64_t kAnyError = 0x8010001F;

/// The journal with the numbers of contexts, which count up from test to test, replaced.
std::string Calls(const SimulatedModule& winscard) {
  std::istringstream journal(winscard.Journal());
  std::string calls;
  for (std::string line; std::getline(journal, line);) {
    for (std::size_t at; (at = line.find("0xCD01")) != std::string::npos;) {
      line.replace(at, 18, "context");
    }
    calls += line + '\n';
  }
  return calls;
}

class PcscReader : public ReaderTest {
 protected:
  const SimulatedModule winscard{"winscard"};
};

struct Answer {
  int64_t result;
  const char* data;
  int64_t length = SIMULATOR_TRUE_LENGTH;
};

TEST_F(PcscReader, TalksToTheCard) {
  ASSERT_EQ(OpenReader(1, ReaderKindPcsc, 9600), 1);
  EXPECT_EQ(ResetCard(), (Reply{1, kAtr}));
  EXPECT_EQ(Send("00A4040008F04F5256414E4501").result, 1);
  EXPECT_EQ(Send("00A4040002FFFF"), (Reply{0, "6A82"}));
  ChangeSlot("00");
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_EQ(ResetCard(), (Reply{0, kUntouched}));
  EXPECT_EQ(Calls(winscard),
            "SCardEstablishContext(0) = 0 context\n"
            "SCardListReadersA(context, \"SCard$DefaultReaders\") = 0 "
            "53696D756C617465642052656164657220300053696D756C617465642052656164657220310000\n"
            "SCardConnectA(context, \"Simulated Reader 0\", 2, 3) = 0 0xFFFFFFFFEA010001 1\n"
            "SCardFreeMemory(context) = 0\n"
            "SCardGetAttrib(0xFFFFFFFFEA010001, 0x90303) = 0 3B6A0000803180664F5256414E45\n"
            "SCardTransmit(0xFFFFFFFFEA010001, 1, 00A4040008F04F5256414E4501) = 0 612B\n"
            "SCardTransmit(0xFFFFFFFFEA010001, 1, 00C000002B) = 0 "
            "6F298408F04F5256414E4501A51D500A4F5256414E45205041598701015F2D02656E9F38069F1A025F2A02"
            "9000\n"
            "SCardTransmit(0xFFFFFFFFEA010001, 1, 00A4040002FFFF) = 0 6A82\n"
            "SCardDisconnect(0xFFFFFFFFEA010001, 0) = 0\n");
}

TEST_F(PcscReader, OpensWhatTheListHolds) {
  const struct {
    int port;
    int expected;
  } rows[] = {{1, 1}, {2, 1}, {3, 0}, {0, 0}, {-1, 0}, {0x7FFFFFFF, 0}};
  for (const auto& row : rows) {
    EXPECT_EQ(OpenReader(row.port, ReaderKindPcsc, 9600), row.expected) << row.port;
  }
  EXPECT_EQ(OpenReaderA("No Such Reader", ReaderKindPcsc), 0);
  EXPECT_EQ(OpenReaderA("", ReaderKindPcsc), 0);
}

/// A reader without a card is open; a card that comes is found by the next reset.
TEST_F(PcscReader, FindsACardThatComesLater) {
  winscard.InsertCard(false);
  ASSERT_EQ(OpenReaderA(kReader, ReaderKindPcsc), 1);
  EXPECT_EQ(ResetCard(), (Reply{0, kUntouched}));
  EXPECT_EQ(Send("00B0000001"), (Reply{0, ""}));
  winscard.InsertCard(true);
  EXPECT_EQ(ResetCard(), (Reply{1, kAtr}));
  EXPECT_EQ(Send("00A4040002FFFF"), (Reply{0, "6A82"}));

  winscard.InsertCard(false);
  winscard.InsertCard(true);
  EXPECT_EQ(Send("00A4040002FFFF"), (Reply{0, ""}));  // the old handle is dead
  EXPECT_EQ(ResetCard(), (Reply{1, kAtr}));
  EXPECT_EQ(Send("00A4040002FFFF"), (Reply{0, "6A82"}));
}

struct ResetRow {
  const char* name;
  const char* slot;
  std::function<void(const SimulatedModule&)> prepare;
  Reply expected;
  const char* calls;  // the functions, in order
};

std::string Functions(const SimulatedModule& winscard) {
  std::istringstream journal(winscard.Journal());
  std::string functions;
  for (std::string line; std::getline(journal, line);) {
    functions += line.substr(0, line.find('(')) + ' ';
  }
  return functions;
}

TEST_F(PcscReader, ReadsTheAtr) {
  const auto removedOnce = [](const SimulatedModule& module) {
    module.Answer("SCardGetAttrib", kRemovedCard);
  };
  const std::string longestAtr(512, 'A');
  const ResetRow rows[] = {
      {"as it stands", "00", [](auto&) {}, {1, kAtr}, "SCardGetAttrib "},
      {"by control code", "01", [](auto&) {}, {1, kAtr}, "SCardControl "},
      {"none",
       "00",
       [](auto& m) { m.Answer("SCardGetAttrib", 0, ""); },
       {1, ""},
       "SCardGetAttrib "},
      {"of 256 octets",
       "00",
       [&](auto& m) { m.Answer("SCardGetAttrib", 0, longestAtr.c_str()); },
       {1, longestAtr},
       "SCardGetAttrib "},
      {"of 257 octets",
       "00",
       [](auto& m) { m.Answer("SCardGetAttrib", 0, "3B00", 257); },
       {0, kUntouched},
       "SCardGetAttrib "},
      {"of -1 octets",
       "01",
       [](auto& m) { m.Answer("SCardControl", 0, "3B00", -1); },
       {0, kUntouched},
       "SCardControl "},
      {"another error",
       "00",
       [](auto& m) { m.Answer("SCardGetAttrib", kAnyError, "3B00"); },
       {0, kUntouched},
       "SCardGetAttrib "},
      {"card back",
       "00",
       removedOnce,
       {1, kAtr},
       "SCardGetAttrib SCardGetStatusChangeA SCardConnectA SCardGetAttrib "},
      {"card back, then a short ATR",
       "00",
       [](auto& m) {
         m.Answer("SCardGetAttrib", kRemovedCard, "FFFFFFFF");
         m.Answer("SCardGetAttrib", 0, "3B", 4);
       },
       {1, "3B000000"},
       "SCardGetAttrib SCardGetStatusChangeA SCardConnectA SCardGetAttrib "},
      {"card back, but gone again",
       "00",
       [](auto& m) {
         m.Answer("SCardGetAttrib", kRemovedCard);
         m.Answer("SCardGetAttrib", kRemovedCard);
       },
       {0, kUntouched},
       "SCardGetAttrib SCardGetStatusChangeA SCardConnectA SCardGetAttrib "},
      {"card not back",
       "00",
       [&](auto& m) {
         removedOnce(m);
         m.Answer("SCardGetStatusChangeA", 0, nullptr, 0x12);
       },
       {0, kUntouched},
       "SCardGetAttrib SCardGetStatusChangeA "},
      {"state not to be had",
       "00",
       [&](auto& m) {
         removedOnce(m);
         m.Answer("SCardGetStatusChangeA", kAnyError, nullptr, 0x22);
       },
       {0, kUntouched},
       "SCardGetAttrib SCardGetStatusChangeA "},
      {"connection refused",
       "00",
       [&](auto& m) {
         removedOnce(m);
         m.Answer("SCardConnectA", kAnyError);
       },
       {0, kUntouched},
       "SCardGetAttrib SCardGetStatusChangeA SCardConnectA "},
  };
  for (const ResetRow& row : rows) {
    EmptySlots();
    winscard.Restart();
    ASSERT_EQ(OpenReaderA(kReader, ReaderKindPcsc), 1);
    ChangeSlot(row.slot);
    const std::size_t opening = Functions(winscard).size();
    row.prepare(winscard);
    EXPECT_EQ(ResetCard(), row.expected) << row.name;
    EXPECT_EQ(Functions(winscard).substr(opening), row.calls) << row.name;
  }
}

struct ListRow {
  const char* name;
  Answer answer;
  int max;
  std::vector<std::string> expected;
};

TEST_F(PcscReader, ListsWhatTheLibraryLists) {
  std::string many, longName;
  for (int i = 0; i < 20; ++i) many += "4100";
  many += "00";
  for (int i = 0; i < 300; ++i) longName += "42";
  longName += "0000";
  const ListRow rows[] = {
      {"two",
       {0,
        "4100424300"
        "00"},
       0,
       {"3 0 0 A", "3 0 0 BC"}},
      {"up to max",
       {0,
        "4100424300"
        "00"},
       1,
       {"3 0 0 A"}},
      {"none", {0, "00"}, 0, {}},
      {"no list", {0, nullptr}, 0, {}},
      {"sixteen without max", {0, many.c_str()}, 0, std::vector<std::string>(16, "3 0 0 A")},
      {"twenty with max", {0, many.c_str()}, 25, std::vector<std::string>(20, "3 0 0 A")},
      {"long name", {0, longName.c_str()}, 0, {"3 0 0 " + std::string(255, 'B')}},
      {"short of its end", {0, "410042"}, 0, {"3 0 0 A", "3 0 0 B"}},
      {"error", {0x8010002E, "410000"}, 0, {}},
  };
  for (const ListRow& row : rows) {
    winscard.Restart();
    winscard.Answer("SCardListReadersA", row.answer.result, row.answer.data, row.answer.length);
    EXPECT_EQ(List(ReaderKindPcsc, 1, row.max), row.expected) << row.name;
    // Its own context goes again, whatever the list gave.
    EXPECT_TRUE(Calls(winscard).ends_with("SCardReleaseContext(context) = 0\n")) << row.name;
  }
  winscard.Restart();
  winscard.Answer("SCardEstablishContext", kAnyError);
  EXPECT_EQ(List(ReaderKindPcsc, 1, 0), std::vector<std::string>());
  winscard.Answer("SCardEstablishContext", 0, "0000000000000000");
  EXPECT_EQ(List(ReaderKindPcsc, 1, 0), std::vector<std::string>());
}

TEST_F(PcscReader, KeepsItsContextAndItsKindOverOpensAndCloses) {
  winscard.Answer("SCardEstablishContext", kAnyError, "00000000000000FF");
  EXPECT_EQ(OpenReaderA(kReader, ReaderKindPcsc), 0);
  winscard.Answer("SCardConnectA", kAnyError);
  EXPECT_EQ(OpenReaderA(kReader, ReaderKindPcsc), 0);  // a new tool: the failed one had no kind yet
  EXPECT_EQ(OpenReaderA(kReader, ReaderKindPcsc), 1);
  EXPECT_EQ(List(ReaderKindPcsc, 0, 0).size(), 2U);    // leaves the open reader alone
  EXPECT_EQ(OpenReaderA(kReader, ReaderKindPcsc), 1);  // on an open reader: no disconnect before
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_EQ(OpenReaderA(kReader, ReaderKindPcsc), 1);
  EXPECT_EQ(OpenReaderA("COM1", ReaderKindD8), 0);  // another kind closes it
  EXPECT_EQ(Functions(winscard),
            "SCardEstablishContext "
            "SCardEstablishContext SCardConnectA "
            "SCardEstablishContext SCardConnectA "
            "SCardEstablishContext SCardListReadersA SCardFreeMemory SCardReleaseContext "
            "SCardConnectA "
            "SCardDisconnect "
            "SCardConnectA "
            "SCardDisconnect ");
  EXPECT_EQ(Send("00A40400"), (Reply{0, ""}));
}

TEST_F(PcscReader, UsesTheHeaderOfItsProtocol) {
  const struct {
    const char* protocol;
    const char* header;
  } rows[] = {{"01", ", 1, "}, {"02", ", 2, "}, {"00", ", 2, "}};
  for (const auto& row : rows) {
    winscard.Restart();
    winscard.Answer("SCardConnectA", 0, row.protocol);
    ASSERT_EQ(OpenReaderA(kReader, ReaderKindPcsc), 1);
    winscard.Answer("SCardTransmit", 0, "9000");
    EXPECT_EQ(Send("00B0000001"), (Reply{1, "9000"}));
    EXPECT_NE(winscard.Journal().find(row.header), std::string::npos) << winscard.Journal();
  }
}

TEST_F(PcscReader, OpensSixteenSideBySide) {
  for (unsigned slot = 0; slot < 16; ++slot) {
    SetReader(slot);
    ASSERT_EQ(OpenReaderA(slot % 2 == 0 ? kReader : kEmptyReader, ReaderKindPcsc), 1);
  }
  for (unsigned slot = 0; slot < 16; ++slot) {
    SetReader(slot);
    EXPECT_EQ(ResetCard().result, slot % 2 == 0 ? 1 : 0) << slot;
  }
  for (unsigned slot = 0; slot < 16; slot += 2) {
    SetReader(slot);
    EXPECT_EQ(CloseReader(), 1);
  }
  SetReader(15);
  winscard.Restart();
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_EQ(Functions(winscard), "SCardDisconnect ");
}

/// What still works when the library lacks one function.
TEST(PcscReaderWithout, OneFunction) {
  const struct {
    const char* missing;
    std::vector<int> expected;  // listing two readers, open by name, by port, reset, send, close
  } rows[] = {
      {"SCardEstablishContext", {0, 0, 0, 0, 0, 1}}, {"SCardReleaseContext", {0, 0, 0, 0, 0, 1}},
      {"SCardListReadersA", {0, 1, 0, 1, 1, 1}},     {"SCardFreeMemory", {0, 1, 0, 1, 1, 1}},
      {"SCardConnectA", {1, 0, 0, 0, 0, 1}},         {"SCardDisconnect", {1, 1, 1, 1, 1, 1}},
      {"SCardTransmit", {1, 1, 1, 1, 0, 1}},         {"SCardGetAttrib", {1, 1, 1, 0, 1, 1}},
      {"SCardControl", {1, 1, 1, 0, 0, 1}},          {"SCardGetStatusChangeA", {1, 1, 1, 1, 1, 1}},
      {"g_rgSCardT0Pci", {1, 1, 1, 1, 0, 1}},        {"g_rgSCardT1Pci", {1, 1, 1, 1, 1, 1}},
      {"SCardStatusA", {1, 1, 1, 1, 1, 1}},
  };
  for (const auto& row : rows) {
    const SimulatedModule winscard = support::ModuleWithout("winscard", row.missing);
    const int listed = List(ReaderKindPcsc, 0, 0).size() == 2 ? 1 : 0;
    const int byPort = OpenReader(1, ReaderKindPcsc, 9600);
    const int byName = OpenReaderA(kReader, ReaderKindPcsc);
    const std::vector<int> results = {
        listed, byName, byPort, ResetCard().result, Send("00A4000C023F00").result, CloseReader()};
    EXPECT_EQ(results, row.expected) << "without " << row.missing;
    PcscReader::EmptySlots();
  }
}

TEST(PcscReaderWithout, StatusChangesFindsNoCard) {
  const SimulatedModule winscard = support::ModuleWithout("winscard", "SCardGetStatusChangeA");
  winscard.InsertCard(false);
  EXPECT_EQ(OpenReaderA(kReader, ReaderKindPcsc), 1);
  winscard.InsertCard(true);
  EXPECT_EQ(ResetCard(), (Reply{0, kUntouched}));
  PcscReader::EmptySlots();
}

}  // namespace
}  // namespace orvane_test
