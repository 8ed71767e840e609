#include "readers/host_steps.h"

namespace orvane_test {
namespace {

class PcscReader : public DriverTest {
 protected:
  PcscReader() : DriverTest(kPcsc) {}
};

TEST_F(PcscReader, TakesAHostsSteps) {
  const struct {
    const char* steps;
    const char* outcomes;
  } rows[] = {
      // The context stays over opens and closes; another kind gives it back.
      {"open;port 1;close;open;answer SCardDisconnect 0 - throw;kind 5;send 00A40400",
       "1 SCardEstablishContext SCardConnectA; "
       "1 SCardListReadersA SCardConnectA SCardFreeMemory; 1 SCardDisconnect; 1 SCardConnectA; "
       "0 SCardDisconnect SCardReleaseContext; 0"},
      // A tool that failed had no kind yet.
      {"answer SCardEstablishContext 0x8010001F 00000000000000FF;open;"
       "answer SCardConnectA 0x8010001F;open;open",
       "0 SCardEstablishContext; 0 SCardEstablishContext SCardConnectA; "
       "1 SCardReleaseContext SCardEstablishContext SCardConnectA"},
      {"open;list 0 0;list 0 1;reset",
       "1 SCardEstablishContext SCardConnectA; "
       "2: 3 0 0 Simulated Reader 0 .. 3 0 0 Simulated Reader 1 SCardEstablishContext "
       "SCardListReadersA SCardFreeMemory SCardReleaseContext; "
       "1: 3 0 0 Simulated Reader 0 SCardEstablishContext SCardListReadersA SCardFreeMemory "
       "SCardReleaseContext; "
       "1 ATR SCardGetAttrib"},
      {"port -1;port 2147483647;name No Such Reader;name ",
       "0 SCardEstablishContext SCardListReadersA SCardFreeMemory; "
       "0 SCardReleaseContext SCardEstablishContext SCardListReadersA SCardFreeMemory; "
       "0 SCardReleaseContext SCardEstablishContext SCardConnectA; "
       "0 SCardReleaseContext SCardEstablishContext SCardConnectA"},
      // Opens without a card, and finds one that comes.
      {"card out;open;reset;send 00B0000001;card in;reset;send 00A4040002FFFF",
       "1 SCardEstablishContext SCardConnectA; 0 SCardGetStatusChangeA; 0 SCardTransmit; "
       "1 ATR SCardGetStatusChangeA SCardConnectA SCardGetAttrib; 0 6A82 SCardTransmit"},
      {"open;card out;card in;send 00A4040002FFFF;reset;send 00A4040002FFFF",
       "1 SCardEstablishContext SCardConnectA; 0 SCardTransmit; "
       "1 ATR SCardGetAttrib SCardGetStatusChangeA SCardConnectA SCardGetAttrib; "
       "0 6A82 SCardTransmit"},
      // A card that was taken out is looked for once.
      {"open;answer SCardGetAttrib 0x80100069 FFFFFFFF;reset",
       "1 SCardEstablishContext SCardConnectA; "
       "1 ATR SCardGetAttrib SCardGetStatusChangeA SCardConnectA SCardGetAttrib"},
      {"open;answer SCardGetAttrib 0x80100069 FFFFFFFF;answer SCardGetAttrib 0 3B 4;reset",
       "1 SCardEstablishContext SCardConnectA; "
       "1 3B000000 SCardGetAttrib SCardGetStatusChangeA SCardConnectA SCardGetAttrib"},
      {"open;answer SCardGetAttrib 0x80100069 FFFFFFFF;answer SCardGetAttrib 0x80100069 FFFFFFFF;"
       "reset",
       "1 SCardEstablishContext SCardConnectA; "
       "0 SCardGetAttrib SCardGetStatusChangeA SCardConnectA SCardGetAttrib"},
      {"open;answer SCardGetAttrib 0x80100069 FFFFFFFF;answer SCardGetStatusChangeA 0 - 0x12;reset",
       "1 SCardEstablishContext SCardConnectA; 0 SCardGetAttrib SCardGetStatusChangeA"},
      {"open;answer SCardGetAttrib 0x80100069 FFFFFFFF;"
       "answer SCardGetStatusChangeA 0x8010001F - 0x22;reset",
       "1 SCardEstablishContext SCardConnectA; 0 SCardGetAttrib SCardGetStatusChangeA"},
      {"open;answer SCardGetAttrib 0x80100069 FFFFFFFF;answer SCardConnectA 0x8010001F;reset",
       "1 SCardEstablishContext SCardConnectA; "
       "0 SCardGetAttrib SCardGetStatusChangeA SCardConnectA"},
      // A card that is back has a new handle, which again may be taken in either form.
      {"answer SCardConnectA 0 01 0xEA00000000000000;"
       "answer SCardConnectA 0 01 0xEA00000000000001;open;slot 01;send 00A4040002FFFF;card out;"
       "send 00A4040002FFFF;reset;card in;reset;send 00A4040002FFFF;close;send 00A4040002FFFF",
       "1 SCardEstablishContext SCardConnectA; -; 0 6A82 SCardControl SCardControl; "
       "0 SCardControl; 0 SCardControl SCardGetStatusChangeA; "
       "1 ATR SCardControl SCardGetStatusChangeA SCardConnectA SCardControl SCardControl; "
       "0 6A82 SCardControl; 1 SCardDisconnect; 0 SCardControl"},
  };
  for (const auto& [steps, outcomes] : rows) {
    EXPECT_EQ(TakeSteps(reader, module, steps, Calls::kNames), outcomes) << steps;
  }
}

TEST_F(PcscReader, ListsWhatTheLibraryLists) {
  const auto times = [](const std::string& digits, int count) {
    std::string all;
    while (count-- > 0) all += digits;
    return all;
  };
  const std::string
      answer = "answer SCardListReadersA 0 ",
      calls = " SCardEstablishContext SCardListReadersA SCardFreeMemory SCardReleaseContext",
      withoutList = "0 SCardEstablishContext SCardListReadersA SCardReleaseContext";
  const std::pair<std::string, std::string> rows[] = {
      {answer + "410042430000;list 0 0", "2: 3 0 0 A .. 3 0 0 BC" + calls},
      {answer + "410042430000;list 0 1", "1: 3 0 0 A" + calls},
      {answer + "00;list 0 0", "0" + calls},
      {answer + "-;list 0 0", withoutList},
      {answer + times("4100", 20) + "00;list 0 0", "16: 3 0 0 A .. 3 0 0 A" + calls},
      {answer + times("4100", 20) + "00;list 0 25", "20: 3 0 0 A .. 3 0 0 A" + calls},
      {answer + times("42", 300) + "0000;list 0 0", "1: 3 0 0 " + times("B", 255) + calls},
      {answer + "410042;list 0 0", "2: 3 0 0 A .. 3 0 0 B" + calls},  // short of its end
      {"answer SCardListReadersA 0x8010002E 410000;list 0 0", withoutList},
      {"answer SCardEstablishContext 0x8010001F;list 0 0", "0 SCardEstablishContext"},
      {"answer SCardEstablishContext 0 0000000000000000;list 0 0", "0 SCardEstablishContext"},
  };
  for (const auto& [steps, outcomes] : rows) {
    EXPECT_EQ(TakeSteps(reader, module, steps, Calls::kNames), outcomes) << steps;
  }
}

TEST_F(PcscReader, ReleasesTheContextOfAListingThatThrows) {
  for (const char* function : {"SCardListReadersA", "SCardFreeMemory", "SCardReleaseContext"}) {
    StartAnew();
    module.Answer(function, 0, nullptr, SIMULATOR_THROW);
    ReaderInfo records[2];
    EXPECT_EQ(GetReaderList(ReaderKindPcsc, records, 0, 0), 0) << function;
    EXPECT_NE(NewCalls().find("SCardReleaseContext("), std::string::npos) << function;
  }
}

// Half of a handle comes first; a library that refuses that knows nothing but the whole. No half
// stands for "no card" or "closed".
TEST_F(PcscReader, HandsOverAHandleThatIsWider) {
  const struct {
    std::string given, refusal, half, whole;
  } rows[] = {
      {"0xEA00000000000000", " 6", "(0, ", "(0xEA00000000000000, "},
      {"0xEA00000000000001", " 0x80100003", "(0x1, ", "(0xEA00000000000001, "},
      {"0xEA000000FFFFFFFF", " 6", "(0xFFFFFFFFFFFFFFFF, ", "(0xEA000000FFFFFFFF, "},
      {"0x8A010001", " 0x80100003", "(0xFFFFFFFF8A010001, ", "(0x8A010001, "},
  };
  for (const auto& [given, refusal, half, whole] : rows) {
    const auto expect = [&, &given = given](const std::string& steps, const std::string& outcomes) {
      EXPECT_EQ(
          TakeSteps(reader, module, "answer SCardConnectA 0 01 " + given + ";open;" + steps),
          "1 SCardEstablishContext(0) SCardConnectA(context, \"Simulated Reader 0\", 2, 3); " +
              outcomes);
    };
    expect("answer SCardGetAttrib" + refusal +
               " FFFF 2;reset;answer SCardTransmit 0 6102;send 00;close",
           "1 ATR SCardGetAttrib" + half + "0x90303) SCardGetAttrib" + whole +
               "0x90303); 0 6985 SCardTransmit" + whole + "1, 00) SCardTransmit" + whole +
               "1, 00C0000002); 1 SCardDisconnect" + whole + "0)");
    // What the refusal left behind is no part of the reply.
    expect("answer SCardTransmit" + refusal + " FFFFFFFF;answer SCardTransmit 0 90 2;send 00",
           "1 9000 SCardTransmit" + half + "1, 00) SCardTransmit" + whole + "1, 00)");
    expect("close", "1 SCardDisconnect" + half + "0) SCardDisconnect" + whole + "0)");
    // A library that takes the half:
    expect(
        "answer SCardGetAttrib 0 9000;reset;answer SCardTransmit 0 9000;send 00;"
        "answer SCardDisconnect 0;close",
        "1 9000 SCardGetAttrib" + half + "0x90303); 1 9000 SCardTransmit" + half +
            "1, 00); 1 SCardDisconnect" + half + "0)");
  }
}

}  // namespace
}  // namespace orvane_test
