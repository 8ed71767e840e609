#include <sstream>

#include "readers/driver_test.h"

namespace orvane_test {
namespace {

using support::SimulatedModule;

constexpr std::int64_t kRemovedCard = 0x80100069;
constexpr std::int64_t kAnyError = 0x8010001F;

// The journal with the numbers of contexts, which count up from test to test, replaced.
std::string Calls(const SimulatedModule& module) {
  std::istringstream journal(module.Journal());
  std::string calls;
  for (std::string line; std::getline(journal, line);) {
    for (std::size_t at; (at = line.find("0xCD01")) != std::string::npos;) {
      line.replace(at, 18, "context");
    }
    calls += line + '\n';
  }
  return calls;
}

std::string Times(const std::string& digits, int count) {
  std::string all;
  while (count-- > 0) all += digits;
  return all;
}

// The functions in a journal, in order; up to ",)" with what each was called for, a handle mostly.
std::string Functions(const std::string& journal, const char* upTo = "(") {
  std::istringstream lines(journal);
  std::string functions;
  for (std::string line; std::getline(lines, line);) {
    functions += line.substr(0, line.find_first_of(upTo)) + ' ';
  }
  return functions;
}

struct Prepared {
  const char* function;
  std::int64_t result;
  const char* data = nullptr;
  std::int64_t length = SIMULATOR_TRUE_LENGTH;
};

class PcscReader : public DriverTest {
 protected:
  PcscReader() : DriverTest(kPcsc) {}

  void Prepare(const Prepared& answer) {
    module.Answer(answer.function, answer.result, answer.data, answer.length);
  }
};

TEST_F(PcscReader, OpensAndCloses) {
  ASSERT_EQ(OpenReader(1, ReaderKindPcsc, 9600), 1);
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_EQ(ResetCard(), (Reply{0, kUntouched}));
  EXPECT_EQ(Calls(module),
            "SCardEstablishContext(0) = 0 context\n"
            "SCardListReadersA(context, \"SCard$DefaultReaders\") = 0 "
            "53696D756C617465642052656164657220300053696D756C617465642052656164657220310000\n"
            "SCardConnectA(context, \"Simulated Reader 0\", 2, 3) = 0 0xFFFFFFFFEA010001 1\n"
            "SCardFreeMemory(context) = 0\n"
            "SCardDisconnect(0xFFFFFFFFEA010001, 0) = 0\n");
}

TEST_F(PcscReader, OpensWhatTheListHolds) {
  for (const int port : {1, 2, 3, 0, -1, 0x7FFFFFFF}) {
    EXPECT_EQ(OpenReader(port, ReaderKindPcsc, 9600), port == 1 || port == 2 ? 1 : 0) << port;
  }
  EXPECT_EQ(OpenReaderA("No Such Reader", ReaderKindPcsc), 0);
  EXPECT_EQ(OpenReaderA("", ReaderKindPcsc), 0);
}

// A reader without a card is open; a card that comes is found by the next reset.
TEST_F(PcscReader, FindsACardThatComesLater) {
  module.InsertCard(false);
  ASSERT_EQ(Open(kPcsc), 1);
  EXPECT_EQ(ResetCard(), (Reply{0, kUntouched}));
  EXPECT_EQ(Send("00B0000001"), (Reply{0, ""}));
  module.InsertCard(true);
  EXPECT_EQ(ResetCard(), (Reply{1, kCardAtr}));
  EXPECT_EQ(Send("00A4040002FFFF"), (Reply{0, "6A82"}));

  module.InsertCard(false);
  module.InsertCard(true);
  EXPECT_EQ(Send("00A4040002FFFF"), (Reply{0, ""}));  // the old handle is dead
  EXPECT_EQ(ResetCard(), (Reply{1, kCardAtr}));
  EXPECT_EQ(Send("00A4040002FFFF"), (Reply{0, "6A82"}));
}

// A card that was taken out is looked for once.
TEST_F(PcscReader, ReadsTheAtrOfACardThatIsBack) {
  const Prepared removed{"SCardGetAttrib", kRemovedCard, "FFFFFFFF"};
  const std::string watch = "SCardGetAttrib SCardGetStatusChangeA ";
  const std::string connect = watch + "SCardConnectA ";
  const struct {
    std::vector<Prepared> answers;
    const char* atr;  // null: none
    std::string calls;
  } rows[] = {
      {{removed}, kCardAtr, connect + "SCardGetAttrib "},
      {{removed, {"SCardGetAttrib", 0, "3B", 4}}, "3B000000", connect + "SCardGetAttrib "},
      {{removed, removed}, nullptr, connect + "SCardGetAttrib "},
      {{removed, {"SCardGetStatusChangeA", 0, nullptr, 0x12}}, nullptr, watch},  // no card
      {{removed, {"SCardGetStatusChangeA", kAnyError, nullptr, 0x22}}, nullptr, watch},
      {{removed, {"SCardConnectA", kAnyError}}, nullptr, connect},
  };
  for (const auto& row : rows) {
    OpenAnew();
    for (const Prepared& answer : row.answers) Prepare(answer);
    EXPECT_EQ(ResetCard(), row.atr != nullptr ? (Reply{1, row.atr}) : (Reply{0, kUntouched}));
    EXPECT_EQ(Functions(NewCalls()), row.calls);
  }
}

TEST_F(PcscReader, ListsWhatTheLibraryLists) {
  using Lines = std::vector<std::string>;
  const std::string longName = Times("42", 300) + "0000";
  const std::string many = Times("4100", 20) + "00";
  const char* const list = "SCardListReadersA";
  const struct {
    Prepared answer;
    int max;
    Lines expected;
  } rows[] = {
      {{list, 0, "410042430000"}, 0, {"3 0 0 A", "3 0 0 BC"}},
      {{list, 0, "410042430000"}, 1, {"3 0 0 A"}},
      {{list, 0, "00"}, 0, {}},
      {{list, 0}, 0, {}},
      {{list, 0, many.c_str()}, 0, Lines(16, "3 0 0 A")},
      {{list, 0, many.c_str()}, 25, Lines(20, "3 0 0 A")},
      {{list, 0, longName.c_str()}, 0, {"3 0 0 " + std::string(255, 'B')}},
      {{list, 0, "410042"}, 0, {"3 0 0 A", "3 0 0 B"}},  // short of its end
      {{list, 0x8010002E, "410000"}, 0, {}},
      {{"SCardEstablishContext", kAnyError}, 0, {}},
      {{"SCardEstablishContext", 0, "0000000000000000"}, 0, {}},
  };
  for (const auto& row : rows) {
    StartAnew();
    Prepare(row.answer);
    EXPECT_EQ(List(ReaderKindPcsc, 1, row.max), row.expected) << row.answer.function;
    // Its own context goes again, whatever the list gave.
    EXPECT_EQ(Calls(module).ends_with("SCardReleaseContext(context) = 0\n"),
              row.answer.function == list);
  }
}

TEST_F(PcscReader, ReleasesTheContextOfAListingThatThrows) {
  for (const char* function : {"SCardListReadersA", "SCardFreeMemory", "SCardReleaseContext"}) {
    StartAnew();
    Prepare({function, 0, nullptr, SIMULATOR_THROW});
    ReaderInfo records[2];
    EXPECT_EQ(GetReaderList(ReaderKindPcsc, records, 0, 0), 0) << function;
    EXPECT_TRUE(Functions(NewCalls()).ends_with("SCardReleaseContext ")) << function;
  }
}

TEST_F(PcscReader, KeepsItsContextAndItsKindOverOpensAndCloses) {
  module.Answer("SCardEstablishContext", kAnyError, "00000000000000FF");
  EXPECT_EQ(Open(kPcsc), 0);
  module.Answer("SCardConnectA", kAnyError);
  EXPECT_EQ(Open(kPcsc), 0);  // a new tool: the failed one had no kind yet
  EXPECT_EQ(Open(kPcsc), 1);
  EXPECT_EQ(List(ReaderKindPcsc, 0, 0).size(), 2U);  // leaves the open reader alone
  EXPECT_EQ(Open(kPcsc), 1);                         // on an open reader: no disconnect before
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_EQ(Open(kPcsc), 1);
  module.Answer("SCardDisconnect", 0, nullptr, SIMULATOR_THROW);
  EXPECT_EQ(OpenReaderA("COM1", ReaderKindD8), 0);  // another kind closes it
  EXPECT_EQ(Functions(module.Journal()),
            "SCardEstablishContext "
            "SCardEstablishContext SCardConnectA SCardReleaseContext "
            "SCardEstablishContext SCardConnectA "
            "SCardEstablishContext SCardListReadersA SCardFreeMemory SCardReleaseContext "
            "SCardConnectA "
            "SCardDisconnect "
            "SCardConnectA "
            "SCardDisconnect SCardReleaseContext ");
  EXPECT_EQ(Send("00A40400"), (Reply{0, ""}));
}

TEST_F(PcscReader, UsesTheHeaderOfItsProtocol) {
  for (const auto& [protocol, header] :
       {std::pair{"01", ", 1, "}, {"02", ", 2, "}, {"00", ", 2, "}}) {
    module.Answer("SCardConnectA", 0, protocol);
    ASSERT_EQ(Open(kPcsc), 1);
    NewCalls();
    module.Answer("SCardTransmit", 0, "9000");
    EXPECT_EQ(Send("00B0000001"), (Reply{1, "9000"}));
    EXPECT_NE(NewCalls().find(header), std::string::npos) << protocol;
  }
}

// Half of a handle comes first; a library that refuses that knows nothing but the whole. No half
// stands for "no card" or "closed".
TEST_F(PcscReader, HandsOverAHandleThatIsWider) {
  const struct {
    std::uint64_t given;
    std::int64_t refusal;
    std::string half, whole;
  } rows[] = {
      {0xEA00000000000000, 6, "(0 ", "(0xEA00000000000000 "},
      {0xEA00000000000001, 0x80100003, "(0x1 ", "(0xEA00000000000001 "},
      {0xEA000000FFFFFFFF, 6, "(0xFFFFFFFFFFFFFFFF ", "(0xEA000000FFFFFFFF "},
      {0x8A010001, 0x80100003, "(0xFFFFFFFF8A010001 ", "(0x8A010001 "},
  };
  for (const auto& [given, refusal, half, whole] : rows) {
    const auto open = [this, handle = static_cast<std::int64_t>(given)] {
      StartAnew();
      module.Answer("SCardConnectA", 0, "01", handle);
      ASSERT_EQ(Open(kPcsc), 1);
      NewCalls();
    };
    open();
    module.Answer("SCardGetAttrib", refusal, "FFFF", 2);
    EXPECT_EQ(ResetCard(), (Reply{1, kCardAtr}));
    module.Answer("SCardTransmit", 0, "6102");
    EXPECT_EQ(Send("00B0000001"), (Reply{0, "6985"}));
    EXPECT_EQ(CloseReader(), 1);
    EXPECT_EQ(Functions(NewCalls(), ",)"), "SCardGetAttrib" + half + "SCardGetAttrib" + whole +
                                               "SCardTransmit" + whole + "SCardTransmit" + whole +
                                               "SCardDisconnect" + whole);
    open();
    EXPECT_EQ(CloseReader(), 1);
    EXPECT_EQ(Functions(NewCalls(), ",)"), "SCardDisconnect" + half + "SCardDisconnect" + whole);

    open();  // in a library that takes the half
    for (const char* function : {"SCardGetAttrib", "SCardTransmit", "SCardDisconnect"}) {
      module.Answer(function, 0, "9000");
    }
    EXPECT_EQ(ResetCard(), (Reply{1, "9000"}));
    EXPECT_EQ(Send("00B0000001"), (Reply{1, "9000"}));
    EXPECT_EQ(CloseReader(), 1);
    EXPECT_EQ(Functions(NewCalls(), ",)"),
              "SCardGetAttrib" + half + "SCardTransmit" + half + "SCardDisconnect" + half);
  }
}

// A card that was pulled and is back has a new handle, which again may be taken in either form.
TEST_F(PcscReader, RepairsAConnectionWhoseHandlesAreWider) {
  for (const char* slot : {"00", "01"}) {
    StartAnew();
    for (const std::uint64_t handle : {0xEA00000000000000, 0xEA00000000000001}) {
      module.Answer("SCardConnectA", 0, "01", static_cast<std::int64_t>(handle));
    }
    ASSERT_EQ(Open(kPcsc), 1);
    ChangeSlot(slot);
    const Reply selected{0, "6A82"}, silence{0, ""};
    EXPECT_EQ(Send("00A4040002FFFF"), selected);
    module.InsertCard(false);
    EXPECT_EQ(Send("00A4040002FFFF"), silence);
    EXPECT_EQ(ResetCard(), (Reply{0, kUntouched}));
    module.InsertCard(true);
    EXPECT_EQ(ResetCard(), (Reply{1, kCardAtr}));
    EXPECT_EQ(Send("00A4040002FFFF"), selected);
    EXPECT_EQ(CloseReader(), 1);
    EXPECT_TRUE(NewCalls().ends_with("SCardDisconnect(0xEA00000000000001, 0) = 0\n"));
    EXPECT_EQ(Send("00A4040002FFFF"), silence);
  }
}

TEST_F(PcscReader, OpensSixteenSideBySide) {
  for (unsigned slot = 0; slot < 16; ++slot) {
    SetReader(slot);
    ASSERT_EQ(OpenReaderA(slot % 2 == 0 ? kPcsc.name : "Simulated Reader 1", ReaderKindPcsc), 1);
  }
  for (unsigned slot = 0; slot < 16; ++slot) {
    SetReader(slot);
    EXPECT_EQ(ResetCard().result, slot % 2 == 0 ? 1 : 0) << slot;
    EXPECT_EQ(Send("00A4000C023F00").result, slot % 2 == 0 ? 1 : 0) << slot;
    NewCalls();
    EXPECT_EQ(CloseReader(), 1);
    EXPECT_EQ(Functions(NewCalls()), "SCardDisconnect ");
  }
}

}  // namespace
}  // namespace orvane_test
